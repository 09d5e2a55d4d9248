#include "fsd/pdu/ProtocolError.h"

#include "fsd/pdu/Fields.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tarvo::fsd::pdu {

ProtocolError::ProtocolError(QString from, QString to, qint32 type, QString parameterText, QString messageText)
    : PduBase{std::move(from), std::move(to)},
      errorType(type),
      parameter(std::move(parameterText)),
      message(std::move(messageText))
{
}

ProtocolError ProtocolError::parse(const QStringList &fields)
{
    fields::require(fields, 5, QLatin1StringView("ProtocolError"));
    return {fields[0], fields[1], fields::toInt32(fields[2]), fields[3], fields[4]};
}

QStringList ProtocolError::serialize() const
{
    return {From, To, QString::number(errorType), parameter, message};
}

bool ProtocolError::isFatal() const
{
    constexpr std::array fatalTypes{1, 2, 3, 6, 10, 11, 12, 13, 15, 16};
    return std::find(fatalTypes.begin(), fatalTypes.end(), errorType) != fatalTypes.end();
}

} // namespace tarvo::fsd::pdu
