#pragma once

#include "manager/AtisBuffers.h"

#include <QObject>
#include <QString>
#include <QStringList>

namespace tarvo::fsd::pdu {
struct ATCPosition;
struct ClientQueryResponse;
struct DeleteATC;
} // namespace tarvo::fsd::pdu

namespace tarvo::manager {

struct SessionContext;

/// What stations tell of themselves and the server of stations, ATIS included. NetworkManager raises its signals as its
/// own.
class StationReports : public QObject
{
    Q_OBJECT

public:
    /// `session` must outlive it.
    explicit StationReports(SessionContext &session, QObject *parent = nullptr);

    void onATCPosition(const fsd::pdu::ATCPosition &pdu);
    void onDeleteATC(const fsd::pdu::DeleteATC &pdu);
    void onValidAtcAnswer(const fsd::pdu::ClientQueryResponse &pdu);
    void onAtisAnswer(const fsd::pdu::ClientQueryResponse &pdu);

    void requestControllerAtis(const QString &callsign);
    void requestValidAtc(const QString &callsign);

signals:
    // As NetworkManager's.
    void controllerUpdateReceived(const QString &from, quint32 frequency, double lat, double lon);
    void controllerDeleted(const QString &from);
    void isValidAtcReceived(const QString &from);
    void controllerAtisReceived(const QString &from, const QStringList &atis);

private:
    void announceAtis(const QString &callsign);

    SessionContext &m_session;
    AtisBuffers m_atis;
};

} // namespace tarvo::manager
