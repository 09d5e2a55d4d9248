#include "fsd/NameResolver.h"

#include <QDnsLookup>
#include <QEventLoop>
#include <QHostAddress>

namespace tarvo::fsd {

namespace {

bool isIPv4Literal(const QString &host)
{
    QHostAddress address;
    return address.setAddress(host) && address.protocol() == QAbstractSocket::IPv4Protocol;
}

QString firstAddress(const QDnsLookup &lookup)
{
    const QList<QDnsHostAddressRecord> records = lookup.hostAddressRecords();
    if (lookup.error() != QDnsLookup::NoError || records.isEmpty())
        return {};
    return records.constFirst().value().toString();
}

} // namespace

std::optional<QString> NameResolver::resolve(const QString &host)
{
    if (isIPv4Literal(host))
        return host;

    const QPointer<QDnsLookup> lookup = new QDnsLookup(QDnsLookup::A, host, this);
    QEventLoop loop;
    connect(lookup, &QDnsLookup::finished, &loop, &QEventLoop::quit);
    m_lookups.append(lookup);
    lookup->lookup();
    loop.exec();

    if (!lookup)
        return std::nullopt;
    m_lookups.removeAll(lookup);
    lookup->deleteLater();
    if (!lookup->isFinished() || lookup->error() == QDnsLookup::OperationCancelledError)
        return std::nullopt;
    return firstAddress(*lookup);
}

void NameResolver::abort()
{
    const auto lookups = m_lookups; // finishing one changes the list
    for (const QPointer<QDnsLookup> &lookup : lookups) {
        if (lookup)
            lookup->abort();
    }
}

} // namespace tarvo::fsd
