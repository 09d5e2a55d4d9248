#include "fsd/pdu/Mute.h"

#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

Mute::Mute(QString from, QString to, bool muted) : PduBase{std::move(from), std::move(to)}, mute(muted) {}

Mute Mute::parse(const QStringList &fields)
{
    fields::require(fields, 3, QLatin1StringView("Mute"));
    return {fields[0], fields[1], fields[2] == QLatin1Char('1')};
}

QStringList Mute::serialize() const
{
    // The receiver goes first here, unlike in reading: kept on purpose.
    return {To, From, mute ? QStringLiteral("1") : QStringLiteral("0")};
}

} // namespace tarvo::fsd::pdu
