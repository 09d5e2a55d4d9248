#include "practice/control/ControlService.h"

#include "practice/PracticeNetwork.h"

#include <QHttpServerRequest>
#include <QHttpServerResponse>
#include <QJsonArray>

namespace tarvo::practice {

namespace {
/// A web page that is open in a browser must not reach into the practice network.
bool comesFromAWebPage(const QHttpServerRequest &request)
{
    return !request.value("Origin").isEmpty();
}

/// What the plugin draws.
QJsonArray drawn(const PluginStandIn &plugin)
{
    QJsonArray list;
    for (const DrawnAircraft &aircraft : plugin.aircraft())
        list.append(QJsonObject{{QStringLiteral("callsign"), aircraft.callsign},
                                {QStringLiteral("airline"), aircraft.airline},
                                {QStringLiteral("type"), aircraft.type},
                                {QStringLiteral("latitude"), aircraft.latitude},
                                {QStringLiteral("longitude"), aircraft.longitude},
                                {QStringLiteral("altitude_m"), aircraft.altitudeM},
                                {QStringLiteral("heading"), aircraft.heading},
                                {QStringLiteral("ground_speed"), aircraft.groundSpeed},
                                {QStringLiteral("moved"), aircraft.moved},
                                {QStringLiteral("positions"), aircraft.positions}});
    return list;
}
} // namespace

ControlService::ControlService(PracticeNetwork &network, QObject *parent)
    : QObject(parent), m_network(network), m_controls(network)
{
    addRoutes();
}

void ControlService::addRoutes()
{
    using Method = QHttpServerRequest::Method;
    using Status = QHttpServerResponse::StatusCode;
    QHttpServer &http = m_network.account().http();
    http.route(QStringLiteral("/practice"), Method::Get, [this] { return QHttpServerResponse(state()); });
    http.route(QStringLiteral("/practice/<arg>"), Method::Post,
               [this](const QString &verb, const QHttpServerRequest &request) {
                   const bool done = !comesFromAWebPage(request) && perform(verb, request.query());
                   return QHttpServerResponse(QJsonObject{{QStringLiteral("done"), done}},
                                              done ? Status::Ok : Status::NotFound);
               });
}

bool ControlService::perform(const QString &verb, const QUrlQuery &arguments)
{
    ControlArguments decoded;
    for (const auto &[name, value] : arguments.queryItems(QUrl::FullyDecoded)) {
        if (!decoded.contains(name))
            decoded.insert(name, value);
    }
    return m_controls.perform(verb, decoded);
}

QJsonObject ControlService::state() const
{
    const XPlaneStandIn &xplane = m_network.xplane();
    return {{QStringLiteral("callsigns"), QJsonArray::fromStringList(m_network.fsd().callsigns())},
            {QStringLiteral("residents"), QJsonArray::fromStringList(m_network.fsd().residents())},
            {QStringLiteral("voice"), QJsonArray::fromStringList(m_network.voice().callsigns())},
            {QStringLiteral("phrases"), QJsonArray::fromStringList(m_network.voicePeople().phrases().names())},
            {QStringLiteral("flight_time"), xplane.flightTime()},
            {QStringLiteral("flight_duration"), xplane.flight().duration()},
            {QStringLiteral("phase"), xplane.flight().phaseAt(xplane.flightTime())},
            {QStringLiteral("paused"), xplane.isPaused()},
            {QStringLiteral("subscriptions"), xplane.subscriptionCount()},
            {QStringLiteral("plugin"), xplane.plugin().isListening()},
            {QStringLiteral("aircraft"), drawn(xplane.plugin())},
            {QStringLiteral("verbs"), QJsonArray::fromStringList(m_controls.verbs())}};
}

} // namespace tarvo::practice
