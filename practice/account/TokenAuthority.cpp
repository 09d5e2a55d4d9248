#include "practice/account/TokenAuthority.h"

#include <QRandomGenerator>

namespace tarvo::practice {

namespace {
QString nameOf(TokenUse use)
{
    switch (use) {
    case TokenUse::Access:
        return QStringLiteral("access");
    case TokenUse::Refresh:
        return QStringLiteral("refresh");
    case TokenUse::Fsd:
        break;
    }
    return QStringLiteral("fsd");
}

QByteArray randomKey()
{
    QByteArray key(32, Qt::Uninitialized);
    QRandomGenerator *random = QRandomGenerator::system();
    for (char &byte : key)
        byte = static_cast<char>(random->bounded(256));
    return key;
}
} // namespace

TokenAuthority::TokenAuthority(const common::Clock &clock)
    : m_clock(clock), m_key(randomKey()), m_lives{3600, 30LL * 24 * 3600, 120}
{
}

qint64 TokenAuthority::life(TokenUse use) const
{
    return m_lives[static_cast<int>(use)];
}

void TokenAuthority::setLife(TokenUse use, qint64 seconds)
{
    m_lives[static_cast<int>(use)] = seconds;
}

QByteArray TokenAuthority::issue(TokenUse use, qint64 cid)
{
    const qint64 now = m_clock.wallMs() / 1000;
    const QJsonObject claims{{QStringLiteral("iss"), QStringLiteral("tarvo-practice")},
                             {QStringLiteral("sub"), QString::number(cid)},
                             {QStringLiteral("use"), nameOf(use)},
                             {QStringLiteral("iat"), now},
                             {QStringLiteral("exp"), now + life(use)},
                             {QStringLiteral("jti"), QString::number(++m_serial)}};
    return JsonWebToken::sign(claims, m_key);
}

JsonWebToken::Verdict TokenAuthority::check(TokenUse use, const QByteArray &token, qint64 *cid) const
{
    const JsonWebToken::Reading reading = JsonWebToken::read(token, m_key, m_clock.wallMs() / 1000);
    if (reading.verdict != JsonWebToken::Verdict::Valid)
        return reading.verdict;
    if (reading.claims.value(QLatin1String("use")).toString() != nameOf(use))
        return JsonWebToken::Verdict::BadSignature; // a good token of another kind is worth no more than a forged one
    if (cid)
        *cid = reading.claims.value(QLatin1String("sub")).toString().toLongLong();
    return JsonWebToken::Verdict::Valid;
}

void TokenAuthority::revokeAll()
{
    m_key = randomKey();
}

} // namespace tarvo::practice
