#include "manager/FlightPlanAnswer.h"

#include "common/Callsign.h"
#include "manager/AircraftTypeRules.h"
#include "manager/ServerCallsign.h"

#include <algorithm>
#include <optional>

namespace tarvo::manager {

namespace {

constexpr QLatin1StringView callsignKeys[] = {QLatin1StringView("CALLSIGN"), QLatin1StringView("CID"),
                                              QLatin1StringView("PILOT"), QLatin1StringView("FROM")};
constexpr QLatin1StringView typeKeys[] = {QLatin1StringView("AIRCRAFT"),     QLatin1StringView("EQUIPMENT"),
                                          QLatin1StringView("AIRCRAFTTYPE"), QLatin1StringView("AIRCRAFT_TYPE"),
                                          QLatin1StringView("TYPE"),         QLatin1StringView("ACFT")};

struct KeyedField
{
    QString key; ///< upper-case
    QString value;
};

std::optional<KeyedField> readKeyed(const QString &field)
{
    const qsizetype equals = field.indexOf(QLatin1Char('='));
    if (equals < 0)
        return std::nullopt;
    return KeyedField{field.left(equals).trimmed().toUpper(), field.sliced(equals + 1).trimmed()};
}

/// A server may send a megabyte of them.
QStringList lookedAt(const QStringList &payload)
{
    QStringList fields = payload.first(std::min(payload.size(), FlightPlanAnswer::maximumFields));
    for (QString &field : fields)
        field.truncate(FlightPlanAnswer::longestField);
    return fields;
}

QList<KeyedField> keyedFields(const QStringList &payload)
{
    QList<KeyedField> result;
    for (const QString &field : payload) {
        if (const std::optional<KeyedField> keyed = readKeyed(field))
            result.append(*keyed);
    }
    return result;
}

/// By the keys' priority, wherever their fields stand. A key without a value tells nothing.
QString keyedCallsign(const QList<KeyedField> &fields)
{
    for (const QLatin1StringView key : callsignKeys) {
        for (const KeyedField &field : fields) {
            if (field.key == key && !field.value.isEmpty())
                return common::normalisedCallsign(field.value);
        }
    }
    return {};
}

QString callsignOf(const QString &from, const QStringList &payload, const QList<KeyedField> &fields)
{
    QString sender = common::normalisedCallsign(from);
    if (!sender.isEmpty() && !isServer(sender))
        return sender;
    if (QString keyed = keyedCallsign(fields); !keyed.isEmpty())
        return keyed;
    const QString first = common::normalisedCallsign(payload.value(0));
    return common::isCallsign(first) ? first : QString();
}

/// By the fields' order, whichever key they have.
QString typeOf(const QStringList &payload, const QList<KeyedField> &fields)
{
    for (const KeyedField &field : fields) {
        if (std::find(std::begin(typeKeys), std::end(typeKeys), field.key) == std::end(typeKeys))
            continue;
        if (QString type = typeFromFlightPlan(field.value); !type.isEmpty())
            return type;
    }
    return typeFromFlightPlan(payload.value(1));
}

} // namespace

FlightPlanAnswer FlightPlanAnswer::read(const QString &from, const QStringList &payload)
{
    const QStringList looked = lookedAt(payload);
    const QList<KeyedField> fields = keyedFields(looked);
    return {callsignOf(from, looked, fields), typeOf(looked, fields)};
}

} // namespace tarvo::manager
