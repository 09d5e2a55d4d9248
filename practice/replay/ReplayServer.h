#pragma once

#include "common/Clock.h"
#include "practice/LineReader.h"
#include "practice/replay/Recording.h"

#include <QHostAddress>
#include <QObject>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <optional>

namespace tarvo::practice {

struct ReplaySettings
{
    Recording recording;   ///< empty: nothing is replayed
    double speed = 1;      ///< 2: in half the time
    bool stepwise = false; ///< after the login only step() sends
};

/// An FSD server that knows nothing and nobody: to each client it says what was recorded of the next connection, behind
/// the last of the first again, and takes no notice of what it is told but for the login line. One client at a time:
/// another one that logs in takes its place. Who doesn't, such as a look whether somebody is here, gets the greeting
/// and changes nothing.
class ReplayServer : public QObject
{
    Q_OBJECT

public:
    explicit ReplayServer(ReplaySettings settings, const common::Clock &clock = common::systemClock(),
                          QObject *parent = nullptr);

    /// Port 0 takes a free one. False when it can't be had; see errorString().
    bool listen(const QHostAddress &address, quint16 port);
    void close();
    quint16 port() const { return m_server.serverPort(); }
    QHostAddress address() const { return m_server.serverAddress(); }
    QString errorString() const { return m_server.errorString(); }

    /// Sends the next lines, at most so many, whether they are due or not. False when there is none: nobody has logged
    /// in, or all has been said.
    bool step(int lines);
    /// Sends what is due by now. Called by a timer; a test with a clock of its own may call it.
    void sendDue();
    /// Lines behind the login that are still to come; 0 before it.
    qsizetype linesLeft() const;
    /// Of the line that comes next, as RecordedLine tells it; the last one's at the end.
    qint64 nextMs() const;

signals:
    // `client`: its callsign; before the login its address.
    void clientConnected(const QString &client);
    void clientLoggedIn(const QString &callsign);
    void lineSent(const QString &client, const QString &line);
    void finished(const QString &client);

private:
    static void dismiss(QTcpSocket *socket);
    void accept();
    void greet(QTcpSocket &socket, const RecordedConnection &connection);
    // `place`: of the recorded connection that the socket was greeted with.
    void read(QTcpSocket *socket, LineReader &reader, qsizetype place);
    void begin(QTcpSocket *socket, qsizetype place, const QString &login);
    void leave();
    void sendNext();

    ReplaySettings m_settings;
    const common::Clock &m_clock;
    QTcpServer m_server;
    QTcpSocket *m_socket = nullptr; ///< the server's, of the client that has logged in; null without one
    QTimer m_timer;
    RecordedConnection m_playing;
    qsizetype m_nextConnection = 0;
    qsizetype m_nextLine = 0;
    qint64 m_loginMs = 0;
    std::optional<QString> m_callsign; ///< nothing before the login; a client may give an empty one
};

} // namespace tarvo::practice
