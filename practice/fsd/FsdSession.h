#pragma once

#include "common/Clock.h"
#include "practice/LineReader.h"
#include "practice/fsd/FsdClientRecord.h"
#include "practice/fsd/FsdErrors.h"
#include "practice/fsd/FsdSettings.h"

#include <QObject>
#include <QString>
#include <QTcpSocket>

#include <memory>
#include <optional>

namespace tarvo::practice {

/// One connection to the FSD server: socket, line limits, and what is known of the client behind it.
class FsdSession : public QObject, public FsdClientRecord
{
    Q_OBJECT

public:
    /// Takes the socket over. Settings and clock must outlive it.
    FsdSession(QTcpSocket *socket, const FsdSettings &settings, const common::Clock &clock, QObject *parent);
    ~FsdSession() override;

    /// The callsign, or address and port before the login.
    QString name() const;
    QString peerAddress() const;
    bool loggedIn() const { return identity.has_value(); }
    /// False from the moment on at which the session is to end.
    bool isOpen() const { return !m_ending; }

    /// Sends a finished line, with its line end. A client that doesn't read is cut off.
    void send(const QString &line);
    /// Sends finished lines in one go, without telling of them one by one.
    void sendQuietly(const QByteArray &lines);
    void sendError(FsdError error, const QString &parameter, const QString &message);
    /// Counts a line that was of no use, tells the client, and ends the session when it is one too many.
    void complain(FsdError error, const QString &parameter, const QString &message);
    /// "$ER", then the end.
    void refuse(FsdError error, const QString &parameter, const QString &message);
    /// Ends the session once everything is written.
    void finish();
    /// Ends the session at once.
    void cutOff(const QString &reason);
    /// Ends the session at once without giving a reason.
    void drop();

    bool handedOver = false;   ///< came from another server: may log in once more under its callsign
    QString announcedCallsign; ///< from "$ID"; empty until then
    QString announcedCid;
    QString openChallenge;  ///< not answered yet
    qint64 connectedMs = 0; ///< steady time, as are the others
    qint64 heardMs = 0;
    qint64 nextPingMs = 0;
    qint64 nextChallengeMs = 0;

signals:
    void lineReceived(const QString &line);
    void lineSent(const QString &line);
    void refused(const QString &reason);
    void ended();

private:
    void read();
    bool withinBudget(double cost);

    const FsdSettings &m_settings;
    const common::Clock &m_clock;
    QTcpSocket *m_socket; ///< a child
    LineReader m_reader;
    QString m_peer;
    double m_budget; ///< lines that may come now
    qint64 m_budgetMs = 0;
    int m_badLines = 0;
    bool m_ending = false;
};

} // namespace tarvo::practice
