#include "fsd/pdu/TextMessage.h"

#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

TextMessage::TextMessage(QString from, QString to, QString text)
    : PduBase{std::move(from), std::move(to)}, message(std::move(text))
{
}

TextMessage TextMessage::parse(const QStringList &fields)
{
    fields::require(fields, 3, QLatin1StringView("TextMessage"));
    return {fields[0], fields[1], fields::joinFrom(fields, 2)};
}

QStringList TextMessage::serialize() const
{
    return {From, To, message};
}

} // namespace tarvo::fsd::pdu
