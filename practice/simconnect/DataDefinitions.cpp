#include "practice/simconnect/DataDefinitions.h"

#include "practice/simconnect/Messages.h"
#include "practice/simconnect/SimException.h"
#include "practice/simconnect/SimObject.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace tarvo::practice {

using namespace simulator::msfs;

namespace {
/// Bytes of a value; 0 for a type that the stand-in doesn't know.
int sizeOf(DWORD datatype)
{
    switch (datatype) {
    case SIMCONNECT_DATATYPE_INT32:
        return 4;
    case SIMCONNECT_DATATYPE_FLOAT64:
        return 8;
    case SIMCONNECT_DATATYPE_STRING64:
        return 64;
    case SIMCONNECT_DATATYPE_STRING256:
        return 256;
    case SIMCONNECT_DATATYPE_WAYPOINT:
        return sizeof(SIMCONNECT_DATA_WAYPOINT);
    default:
        return 0;
    }
}

bool fits(DWORD datatype, Quantity quantity)
{
    if (datatype == SIMCONNECT_DATATYPE_WAYPOINT)
        return quantity == Quantity::Waypoints;
    if (datatype == SIMCONNECT_DATATYPE_STRING64 || datatype == SIMCONNECT_DATATYPE_STRING256)
        return quantity == Quantity::Text;
    return sizeOf(datatype) > 0 && quantity != Quantity::Text && quantity != Quantity::Waypoints;
}

const SimVariable &variableOf(const DataDefinitions::Field &field)
{
    return simVariables()[static_cast<std::size_t>(field.variable)];
}

QByteArray readField(const DataDefinitions::Field &field, const SimObject &object)
{
    const int size = sizeOf(field.datatype);
    if (variableOf(field).quantity == Quantity::Text)
        return message::text(qstrcmp(variableOf(field).name, "TITLE") == 0 ? object.title : object.tailNumber, size);
    if (variableOf(field).quantity == Quantity::Waypoints)
        return {size, '\0'};
    const double value = field.unit->fromNatural(object.value(field.variable));
    if (field.datatype == SIMCONNECT_DATATYPE_FLOAT64)
        return message::float64(value);
    return message::int32(static_cast<qint32>(std::lround(value)));
}

template <typename Value>
Value valueAt(const char *bytes)
{
    Value value;
    std::memcpy(&value, bytes, sizeof(value));
    return value;
}

double numberAt(const char *bytes, DWORD datatype)
{
    return datatype == SIMCONNECT_DATATYPE_FLOAT64 ? valueAt<double>(bytes) : valueAt<qint32>(bytes);
}

bool isPlace(const SIMCONNECT_DATA_WAYPOINT &waypoint)
{
    return std::abs(waypoint.Latitude) <= 90 && std::abs(waypoint.Longitude) <= 180 && std::isfinite(waypoint.Altitude);
}
} // namespace

quint32 DataDefinitions::add(quint32 define, const QByteArray &datum, const QByteArray &unit, quint32 datatype)
{
    const int variable = simVariableIndex(datum);
    if (variable < 0)
        return NameUnrecognized;
    const Field field{.variable = variable,
                      .unit = simUnit(unit, simVariables()[static_cast<std::size_t>(variable)].quantity),
                      .datatype = datatype};
    if (!field.unit)
        return NameUnrecognized;
    if (!fits(datatype, variableOf(field).quantity))
        return InvalidDataType;
    if (!m_definitions.contains(define) && m_definitions.size() >= mostDefinitions)
        return DefinitionError;
    QList<Field> &fields = m_definitions[define];
    if (fields.size() >= mostFields)
        return DefinitionError;
    fields.append(field);
    return NoException;
}

QByteArray DataDefinitions::read(quint32 define, const SimObject &object) const
{
    QByteArray data;
    const auto fields = m_definitions.constFind(define);
    if (fields == m_definitions.constEnd())
        return data;
    for (const Field &field : *fields)
        data += readField(field, object);
    return data;
}

quint32 DataDefinitions::write(quint32 define, const QByteArray &data, SimObject &object,
                               std::optional<SIMCONNECT_DATA_WAYPOINT> &waypoint) const
{
    qsizetype at = 0;
    for (const Field &field : fields(define)) {
        const int size = sizeOf(field.datatype);
        if (data.size() < at + size)
            return DataError;
        const char *bytes = data.constData() + at;
        at += size;
        if (field.datatype == SIMCONNECT_DATATYPE_WAYPOINT) {
            waypoint = valueAt<SIMCONNECT_DATA_WAYPOINT>(bytes);
            if (!isPlace(*waypoint))
                return DataError;
        } else if (variableOf(field).quantity == Quantity::Text) {
            return OperationInvalidForObjectType; // nobody renames an aircraft
        } else {
            const double number = numberAt(bytes, field.datatype);
            if (!std::isfinite(number))
                return DataError;
            object.writes.write(field.variable, field.unit->toNatural(number), object.state);
        }
    }
    return at == data.size() ? NoException : DataError;
}

} // namespace tarvo::practice
