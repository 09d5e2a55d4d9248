#pragma once

#include "model/RadioMessageReceived.h"

#include <QList>
#include <QObject>
#include <QString>

#include <memory>

namespace tarvo::fsd::pdu {
struct BroadcastMessage;
struct RadioMessage;
struct TextMessage;
} // namespace tarvo::fsd::pdu

namespace tarvo::simulator {
class Simulator;
}

namespace tarvo::manager {

class OwnAircraft;
class SessionMark;
struct SessionContext;

/// Text on the radios, to one callsign and to all, both ways. NetworkManager raises its signals as its own.
///
/// Whoever hears a signal or is shown a text may act on it at once: what is needed afterwards is copied first.
class TextTraffic : public QObject
{
    Q_OBJECT

public:
    /// Both must outlive it.
    TextTraffic(SessionContext &session, const OwnAircraft &own, QObject *parent = nullptr);

    void onTextMessage(const fsd::pdu::TextMessage &pdu);
    void onBroadcastMessage(const fsd::pdu::BroadcastMessage &pdu);
    void onRadioMessage(const fsd::pdu::RadioMessage &pdu);

    void sendRadioMessage(const QString &message);
    void sendPrivateMessage(const QString &to, const QString &message);
    void sendWallop(const QString &message);

signals:
    // As NetworkManager's.
    void serverMessageReceived(const QString &message);
    void privateMessageReceived(const QString &from, const QString &message);
    void privateMessageSent(const QString &to, const QString &message);
    void broadcastMessageReceived(const QString &from, const QString &message);
    void radioMessageSent(const QString &message, const QList<uint> &frequencies);
    void wallopSent(const QString &message);
    void radioMessageReceived(const tarvo::network::RadioMessageReceived &args);
    void selcalAlertReceived(const QString &from, const QList<uint> &frequencies);

private:
    std::shared_ptr<simulator::Simulator> simulatorWhile(const SessionMark &mark) const;
    void onSelcal(const QString &from, const QList<uint> &frequencies);

    SessionContext &m_session;
    const OwnAircraft &m_own;
};

} // namespace tarvo::manager
