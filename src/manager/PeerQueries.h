#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

namespace tarvo::fsd::pdu {
struct ClientQuery;
struct Ping;
struct PlaneInfoRequest;
} // namespace tarvo::fsd::pdu
namespace tarvo::model {
struct AircraftConfiguration;
}

namespace tarvo::manager {

class OwnAircraft;
struct SessionContext;

/// What other clients and the server ask about the own client and aircraft, and what is told and asked in turn.
class PeerQueries : public QObject
{
    Q_OBJECT

public:
    /// Both must outlive it.
    PeerQueries(SessionContext &session, OwnAircraft &own, QObject *parent = nullptr);

    void onClientQuery(const fsd::pdu::ClientQuery &pdu);
    void onPing(const fsd::pdu::Ping &pdu);
    void onPlaneInfoRequest(const fsd::pdu::PlaneInfoRequest &pdu);
    /// As the server told it.
    void setPublicAddress(const QString &address) { m_publicAddress = address; }

    void sendConfigurationToAll(const model::AircraftConfiguration &configuration);
    void sendConfiguration(const QString &to, const model::AircraftConfiguration &configuration);
    void sendOwnCapabilities(const QString &callsign);
    void requestRealName(const QString &callsign);
    void requestCapabilities(const QString &callsign);

signals:
    /// As NetworkManager's.
    void capabilitiesRequestReceived(const QString &from);
    /// A configuration message has come; on the wire it is a question.
    void configurationReceived(const QString &from, const QString &json);

private:
    void answer(const fsd::pdu::ClientQuery &query, const QStringList &payload);
    void answerCapabilities(const fsd::pdu::ClientQuery &query);
    void sendClientInformation(const QString &to);

    SessionContext &m_session;
    OwnAircraft &m_own;
    QString m_publicAddress;
};

} // namespace tarvo::manager
