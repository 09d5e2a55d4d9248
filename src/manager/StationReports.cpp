#include "manager/StationReports.h"

#include "common/Callsign.h"
#include "fsd/pdu/ATCPosition.h"
#include "fsd/pdu/ClientQuery.h"
#include "fsd/pdu/ClientQueryResponse.h"
#include "fsd/pdu/DeleteATC.h"
#include "manager/Notifications.h"
#include "manager/OneLine.h"
#include "manager/ServerCallsign.h"
#include "model/Controller.h"

namespace tarvo::manager {

using namespace fsd::pdu;

namespace {
constexpr int atisColour = 0xFFA500;
}

StationReports::StationReports(SessionContext &session, QObject *parent) : QObject(parent), m_session(session) {}

void StationReports::onATCPosition(const ATCPosition &pdu)
{
    // An observer reports itself this way; its echo is no station.
    if (common::normalisedCallsign(pdu.From) == m_session.info.callsign)
        return;
    const quint32 frequency = pdu.frequencies.value(0, model::Controller::noFrequency);
    emit controllerUpdateReceived(pdu.From, frequency, pdu.latitude, pdu.longitude);
}

void StationReports::onDeleteATC(const DeleteATC &pdu)
{
    emit controllerDeleted(pdu.From.toUpper());
}

void StationReports::onValidAtcAnswer(const ClientQueryResponse &pdu)
{
    if (pdu.payload.value(0).toUpper() == QLatin1StringView("Y"))
        emit isValidAtcReceived(pdu.payload.value(1).toUpper());
}

void StationReports::onAtisAnswer(const ClientQueryResponse &pdu)
{
    const QString callsign = common::normalisedCallsign(pdu.From);
    const QString kind = pdu.payload.value(0);
    const QString text = pdu.payload.value(1); // ends at the first colon: the rest is not put together again
    if (kind == QLatin1StringView("T"))
        m_atis.append(callsign, text);
    else if (kind == QLatin1StringView("Z"))
        m_atis.append(callsign, tr("Estimated logoff time: %1").arg(text));
    else if (kind == QLatin1StringView("E"))
        announceAtis(callsign);
}

void StationReports::announceAtis(const QString &callsign)
{
    // Taken out first: a listener may ask for it again.
    const std::optional<QStringList> lines = m_atis.take(callsign);
    if (!lines)
        return;
    const SessionMark mark = m_session.mark();
    emit controllerAtisReceived(callsign, *lines);
    for (const QString &line : QStringList{callsign + QStringLiteral(" ATIS:")} + *lines) {
        if (!mark.holds())
            return;
        showNotification(m_session, line, atisColour);
    }
}

void StationReports::requestControllerAtis(const QString &callsign)
{
    const QString station = onOneLine(common::normalisedCallsign(callsign));
    m_atis.begin(station);
    m_session.send(ClientQuery(m_session.info.callsign, station, ClientQueryType::Atis, {}));
}

void StationReports::requestValidAtc(const QString &callsign)
{
    m_session.send(ClientQuery(m_session.info.callsign, serverCallsign, ClientQueryType::IsValidAtc, {callsign}));
}

} // namespace tarvo::manager
