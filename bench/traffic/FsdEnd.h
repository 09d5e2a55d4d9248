#pragma once

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

namespace tarvo::fsd::pdu {
struct ClientQuery;
}

namespace tarvo::bench {

class Ledger;

/// The FSD server and everybody behind it: logs one client in, then plays a crowd of pilots. Their reports are spread
/// evenly over the time; every line is flushed at once.
class FsdEnd : public QObject
{
    Q_OBJECT

public:
    /// `rate`: fast reports of each pilot in a second. The ledger outlives this end.
    FsdEnd(int pilots, double rate, Ledger &ledger);

    bool listen();
    quint16 port() const { return m_server.serverPort(); }
    /// How often each pilot sends his slow report, too.
    void setSlowInterval(int ms);
    bool isLoggedIn() const { return m_loggedIn; }
    /// The crowd is there from now on.
    void startTraffic();
    /// No more reports; questions are still answered.
    void stopTraffic() { m_timer.stop(); }
    void hangUp();

private:
    void onNewConnection();
    void onReadyRead();
    void handle(const QString &line);
    void answerQuery(const QString &line);
    void answerAsPilot(const fsd::pdu::ClientQuery &query);
    void sendDue();
    void sendFast();
    void sendSlow();
    void send(const QString &line);
    void write(const QByteArray &line);

    const int m_pilots;
    const double m_nsPerFast; ///< between two fast lines of anybody
    double m_nsPerSlow = 0;   ///< the same of slow lines
    Ledger &m_ledger;
    QTcpServer m_server;
    QPointer<QTcpSocket> m_socket;
    QByteArray m_received;
    QString m_client; ///< callsign
    bool m_loggedIn = false;
    QTimer m_timer;
    double m_nextFastNs = 0;
    double m_nextSlowNs = 0;
    int m_nextFastPilot = 0;
    int m_nextSlowPilot = 0;
};

} // namespace tarvo::bench
