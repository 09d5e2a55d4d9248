#include "fsd/pdu/ATCPosition.h"

#include "fsd/pdu/Fields.h"

namespace tarvo::fsd::pdu {

namespace {

QList<quint32> readFrequencies(const QString &text)
{
    QList<quint32> frequencies;
    for (const QStringView item : QStringView(text).split(QLatin1Char('&'), Qt::SkipEmptyParts))
        frequencies.append(fields::toFrequency(item));
    return frequencies;
}

/// Takes nothing off again: the writer hands in the short form.
QString writeFrequencies(const QList<quint32> &frequencies)
{
    QStringList items;
    items.reserve(frequencies.size());
    for (const quint32 frequency : frequencies)
        items.append(QString::number(frequency));
    return items.join(QLatin1Char('&'));
}

} // namespace

ATCPosition ATCPosition::parse(const QStringList &fields)
{
    fields::require(fields, 7, QLatin1StringView("AtcPosition")); // with this casing
    return {{fields[0], {}},
            readFrequencies(fields[1]),
            toNetworkFacility(fields[2]),
            fields::toInt32(fields[3]),
            toNetworkRating(fields[4]),
            fields::toDouble(fields[5]),
            fields::toDouble(fields[6])};
}

QStringList ATCPosition::serialize() const
{
    return {From,
            writeFrequencies(frequencies),
            toWire(facility),
            QString::number(visibilityRange),
            toWire(rating),
            fields::fixed(latitude, 5),
            fields::fixed(longitude, 5),
            QStringLiteral("0")}; // the altitude, which nobody reads
}

} // namespace tarvo::fsd::pdu
