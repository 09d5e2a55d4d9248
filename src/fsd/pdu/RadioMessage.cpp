#include "fsd/pdu/RadioMessage.h"

#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

namespace {

QList<quint32> readAddressed(const QString &text)
{
    QList<quint32> frequencies;
    const auto items = QStringView(text).split(QLatin1Char('&')); // empty items stay
    frequencies.reserve(items.size());
    for (const QStringView item : items) // the first character goes, whether it is "@" or not
        frequencies.append(fields::toFrequency(item.mid(1)));
    return frequencies;
}

QString writeAddressed(const QList<quint32> &frequencies)
{
    QStringList items;
    items.reserve(frequencies.size());
    for (const quint32 frequency : frequencies)
        items.append(QLatin1Char('@') + QString::number(frequency - fields::frequencyOffset));
    return items.join(QLatin1Char('&'));
}

} // namespace

RadioMessage::RadioMessage(QString from, QList<quint32> frequencyList, QString text)
    : PduBase{std::move(from), {}}, frequencies(std::move(frequencyList)), message(std::move(text))
{
}

RadioMessage RadioMessage::parse(const QStringList &fields)
{
    if (fields.size() < 3)
        fields::fail(fields, QStringLiteral("Invalid field count for RadioMessage message.")); // not "command."
    return {fields[0], readAddressed(fields[1]), fields::joinFrom(fields, 2)};
}

QStringList RadioMessage::serialize() const
{
    return {From, writeAddressed(frequencies), message};
}

} // namespace tarvo::fsd::pdu
