#include "practice/xplane/DrawnTraffic.h"

namespace tarvo::practice {

namespace {
constexpr qsizetype configurationValues = 11;
}

void DrawnTraffic::add(const QVariantList &arguments)
{
    DrawnAircraft aircraft;
    aircraft.callsign = arguments.value(0).toString();
    if (!contains(aircraft.callsign)) {
        if (m_order.size() >= mostAircraft)
            return;
        m_order.append(aircraft.callsign);
    }
    aircraft.airline = arguments.value(1).toString();
    aircraft.type = arguments.value(2).toString();
    aircraft.latitude = arguments.value(3).toDouble();
    aircraft.longitude = arguments.value(4).toDouble();
    aircraft.altitudeM = arguments.value(5).toDouble();
    aircraft.heading = arguments.value(6).toDouble();
    aircraft.bank = arguments.value(7).toDouble();
    aircraft.pitch = arguments.value(8).toDouble();
    aircraft.moved = QStringLiteral("ADD");
    aircraft.movement = arguments;
    aircraft.configuration = QVariantList(configurationValues);
    m_aircraft.insert(aircraft.callsign, aircraft);
}

void DrawnTraffic::remove(const QString &callsign)
{
    if (m_aircraft.remove(callsign))
        m_order.removeOne(callsign);
}

void DrawnTraffic::take(const PluginMessage &message)
{
    if (message.name == QLatin1StringView("POS"))
        move(message, 5, 8);
    else if (message.name == QLatin1StringView("FSTPOS"))
        move(message, 5, 15);
    else if (message.name == QLatin1StringView("ACCONF"))
        configure(message.arguments);
    else if (message.name == QLatin1StringView("DELALL"))
        clear();
}

void DrawnTraffic::move(const PluginMessage &message, qsizetype heading, qsizetype groundSpeed)
{
    const QVariantList &arguments = message.arguments;
    const auto found = m_aircraft.find(arguments.value(0).toString());
    if (found == m_aircraft.end())
        return;
    found->latitude = arguments.value(1).toDouble();
    found->longitude = arguments.value(2).toDouble();
    found->altitudeM = arguments.value(3).toDouble();
    found->heading = arguments.value(heading).toDouble();
    found->bank = arguments.value(heading + 1).toDouble();
    found->pitch = arguments.value(heading + 2).toDouble();
    found->groundSpeed = arguments.value(groundSpeed).toDouble();
    found->moved = message.name;
    found->movement = arguments;
    ++found->positions;
}

void DrawnTraffic::configure(const QVariantList &arguments)
{
    const auto found = m_aircraft.find(arguments.value(0).toString());
    if (found == m_aircraft.end())
        return;
    for (qsizetype i = 0; i < configurationValues; ++i) {
        if (arguments.value(i + 1).isValid())
            found->configuration[i] = arguments.at(i + 1);
    }
}

void DrawnTraffic::clear()
{
    m_aircraft.clear();
    m_order.clear();
}

QList<DrawnAircraft> DrawnTraffic::all() const
{
    QList<DrawnAircraft> list;
    for (const QString &callsign : m_order)
        list.append(m_aircraft.value(callsign));
    return list;
}

} // namespace tarvo::practice
