#include "fsd/pdu/ClientIdentification.h"

#include "fsd/pdu/Fields.h"

namespace tarvo::fsd::pdu {

ClientIdentification ClientIdentification::parse(const QStringList &fields)
{
    fields::require(fields, 8, QLatin1StringView("ClientIdentification"));
    return {{fields[0], fields[1]},
            fields[2].toUShort(nullptr, 16), // 0 when it does not fit
            fields[3],
            fields::toInt32(fields[4]),
            fields::toInt32(fields[5]),
            fields[6],
            fields[7],
            fields.value(8)};
}

QStringList ClientIdentification::serialize() const
{
    QStringList list{From,
                     To,
                     QString::number(clientId, 16),
                     clientName,
                     QString::number(majorVersion),
                     QString::number(minorVersion),
                     cid,
                     systemUniqueId};
    if (!initialChallenge.isEmpty())
        list.append(initialChallenge);
    return list;
}

} // namespace tarvo::fsd::pdu
