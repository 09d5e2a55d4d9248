#pragma once

#include "common/Clock.h"
#include "practice/account/JsonWebToken.h"

#include <QByteArray>

#include <optional>

namespace tarvo::practice {

/// What a token is good for. A token of one kind never passes for another.
enum class TokenUse
{
    Access,  ///< the account service, as bearer
    Refresh, ///< new tokens
    Fsd,     ///< the login at the FSD server
};

/// Issues and checks the network's tokens. The key is random and lives as long as the object.
class TokenAuthority
{
public:
    explicit TokenAuthority(const common::Clock &clock = common::systemClock());

    /// Seconds that a new token of this kind lives: by default an hour, thirty days and two minutes. May be 0 or
    /// negative: such a token is born expired.
    qint64 life(TokenUse use) const;
    void setLife(TokenUse use, qint64 seconds);

    QByteArray issue(TokenUse use, qint64 cid);
    /// The CID of a good token of this kind, or why it isn't good.
    JsonWebToken::Verdict check(TokenUse use, const QByteArray &token, qint64 *cid = nullptr) const;
    /// Makes every token issued so far invalid.
    void revokeAll();

private:
    const common::Clock &m_clock;
    QByteArray m_key;
    qint64 m_lives[3];
    qint64 m_serial = 0; ///< makes two tokens of one second differ
};

} // namespace tarvo::practice
