#include "fsd/pdu/Wallop.h"

#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

Wallop::Wallop(QString from, QString text) : PduBase{std::move(from), QStringLiteral("*S")}, message(std::move(text)) {}

Wallop Wallop::parse(const QStringList &fields)
{
    if (fields.size() != 3)
        fields::fail(fields, QStringLiteral("Invalid field count for Wallop command."));
    Wallop wallop(fields[0], fields[2]);
    wallop.To = fields[1];
    return wallop;
}

QStringList Wallop::serialize() const
{
    return {From, QStringLiteral("*S"), message};
}

} // namespace tarvo::fsd::pdu
