#include "fsd/pdu/AuthChallenge.h"

#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

AuthChallenge::AuthChallenge(QString from, QString to, QString challengeText)
    : PduBase{std::move(from), std::move(to)}, challenge(std::move(challengeText))
{
}

AuthChallenge AuthChallenge::parse(const QStringList &fields)
{
    fields::require(fields, 3, QLatin1StringView("AuthChallenge"));
    return {fields[0], fields[1], fields[2]};
}

QStringList AuthChallenge::serialize() const
{
    return {From, To, challenge};
}

} // namespace tarvo::fsd::pdu
