#include "fsd/AddressLookup.h"

#include <QtEndian>

#include <winsock2.h>

#include <windns.h>

namespace tarvo::fsd {

std::optional<quint32> lookUpAddress(const QByteArray &name)
{
    PDNS_RECORDA records = nullptr; // whatever UNICODE makes of PDNS_RECORD
    if (DnsQuery_UTF8(name.constData(), DNS_TYPE_A, DNS_QUERY_STANDARD, nullptr, &records, nullptr) != ERROR_SUCCESS)
        return std::nullopt;
    std::optional<quint32> address;
    for (const DNS_RECORDA *record = records; record && !address; record = record->pNext) {
        if (record->wType == DNS_TYPE_A)
            address = qFromBigEndian<quint32>(record->Data.A.IpAddress);
    }
    DnsRecordListFree(records, DnsFreeRecordList);
    return address;
}

} // namespace tarvo::fsd
