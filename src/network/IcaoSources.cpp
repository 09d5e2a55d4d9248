#include "network/IcaoSources.h"

#include "network/IcaoText.h"

#include <QIODevice>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QJsonValue>
#include <QStringList>

#include <limits>
#include <optional>
#include <utility>

namespace tarvo::network {

namespace {

constexpr qint64 longestLine = 64 * 1024; ///< bytes; the rest of a longer line counts as a line of its own

qint64 integer(const QJsonValue &value)
{
    return value.isString() ? value.toString().trimmed().toLongLong() : value.toInteger(0);
}

int smallInteger(const QJsonValue &value)
{
    const qint64 number = integer(value);
    const bool fits = number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
    return fits ? static_cast<int>(number) : 0;
}

bool flag(const QJsonValue &value)
{
    if (value.isBool())
        return value.toBool();
    const QString text = value.toString().trimmed().toUpper();
    return text == QLatin1String("Y") || text == QLatin1String("YES") || text == QLatin1String("TRUE") ||
           integer(value) != 0;
}

SwiftAircraftIcaoRow jsonRow(const QJsonObject &object)
{
    const auto value = [&object](const char *key) { return object.value(QLatin1String(key)); };
    return {.id = integer(value("id")),
            .designator = value("designator").toString(),
            .manufacturer = value("manufacturer").toString(),
            .model = value("model").toString(),
            .type = value("type").toString(),
            .engine = value("engine").toString(),
            .engineCount = smallInteger(value("enginecount")),
            .wakeTurbulenceCategory = value("wtc").toString(),
            .rank = smallInteger(value("rank")),
            .realWorld = flag(value("realworld")),
            .legacy = flag(value("legacy")),
            .military = flag(value("military")),
            .created = value("created").toString(),
            .lastUpdated = value("lastupdated").toString()};
}

/// The row of a line; nothing for a line that is dropped. Id and rank stay open.
std::optional<SwiftAircraftIcaoRow> doc8643Row(const QString &line)
{
    const QStringList columns = line.split(QLatin1Char('\t'));
    if (columns.size() < 5)
        return std::nullopt;
    SwiftAircraftIcaoRow row;
    row.manufacturer = sanitizeText(columns.at(0));
    row.model = sanitizeText(columns.at(1));
    row.designator = columns.at(2).trimmed().toUpper();
    row.type = columns.at(3).trimmed().toUpper();
    row.wakeTurbulenceCategory = columns.at(4).trimmed().toUpper();
    if (row.designator.size() < 2 || row.designator.size() > 4)
        return std::nullopt;
    if (row.type.size() >= 3 && row.type.at(1) >= u'0' && row.type.at(1) <= u'9') {
        row.engineCount = row.type.at(1).digitValue();
        row.engine = row.type.at(2);
    }
    row.realWorld = true;
    return row;
}

} // namespace

LegacyIcaoJson parseLegacyIcaoJson(const QByteArray &json)
{
    LegacyIcaoJson result;
    QJsonParseError error;
    const QJsonObject root = QJsonDocument::fromJson(json, &error).object();
    if (error.error != QJsonParseError::NoError) {
        result.error = QStringLiteral("swift aircraft ICAO JSON parse error: ") + error.errorString();
        return result;
    }
    const QJsonValue data = root.value(QLatin1String("data"));
    if (!data.isArray()) {
        result.error = QStringLiteral("swift aircraft ICAO JSON is missing data array");
        return result;
    }
    result.label = root.value(QLatin1String("latest")).toString();
    const QJsonArray array = data.toArray();
    for (const auto &item : array) {
        if (item.isObject())
            result.rows.append(jsonRow(item.toObject()));
    }
    return result;
}

QList<SwiftAircraftIcaoRow> parseDoc8643(QIODevice &device)
{
    QList<SwiftAircraftIcaoRow> rows;
    bool first = true;
    while (!device.atEnd()) {
        const QByteArray bytes = device.readLine(longestLine);
        if (bytes.isEmpty()) // a read error: no line comes any more
            break;
        QString line = QString::fromUtf8(bytes);
        if (std::exchange(first, false) && line.startsWith(QChar::ByteOrderMark))
            line.remove(0, 1);
        std::optional<SwiftAircraftIcaoRow> row = doc8643Row(line);
        if (!row)
            continue;
        row->id = rows.size() + 1;
        row->rank = static_cast<int>(row->id);
        rows.append(*row);
    }
    return rows;
}

} // namespace tarvo::network
