#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QObject>
#include <QPointer>
#include <QQueue>
#include <QString>
#include <QStringList>
#include <QTcpServer>

#include <functional>

class QTcpSocket;

namespace tarvo::test {

/// The server's end of an FSD session, scripted by a test, on loopback. Verbs act on the newest connection and wait in
/// an event loop for at most the deadline; a failed one says on the log what came instead.
class FsdPeer : public QObject
{
    Q_OBJECT

public:
    static constexpr int deadlineMs = 30'000;

    /// Listens on `address`, on `port` or any free one. A second peer on the first one's port at 127.0.0.2 plays the
    /// server that a session is sent to.
    explicit FsdPeer(const QString &address = QStringLiteral("127.0.0.1"), quint16 port = 0);
    ~FsdPeer() override;

    QString address() const { return m_address; }
    /// 0 when it could not listen.
    quint16 port() const { return m_port; }
    /// Refuses connections from now on; the port stays known.
    void stopListening() { m_server.close(); }

    /// Waits until `count` connections in all have come in.
    bool waitForConnection(int count = 1);
    /// Waits until the newest connection is closed by the client.
    bool waitForClose();
    bool isClientConnected() const;
    int connectionCount() const { return m_connections; }

    /// Sends one line; the line end is added.
    void inject(const QString &line);
    /// Sends bytes as they stand.
    void injectBytes(const QByteArray &bytes);
    /// The next line that the client sent, without its line end; null when none comes.
    QString nextLine();
    /// True when the client sends so many further lines, whatever they say.
    bool skip(int lines);
    /// True when the next line that the client sends is `line`.
    bool expect(const QString &line);
    /// True when the next lines are these.
    bool expect(const QStringList &lines);
    /// True when the client has sent no further line. A challenge, which every client answers, makes sure that all that
    /// was injected before has had its effect; a closed connection is only drained.
    bool expectNothing();

    /// Everything that the newest connection has sent, challenge answers included.
    QByteArray receivedBytes() const { return m_received; }
    /// Closes the newest connection in good order, or at once, losing what is under way.
    void closeConnection();
    void abortConnection();

private:
    void onNewConnection();
    void onReadyRead();
    bool waitUntil(const std::function<bool()> &condition);

    QTcpServer m_server;
    QString m_address;
    quint16 m_port = 0;
    QPointer<QTcpSocket> m_socket;
    int m_connections = 0;
    int m_challenges = 0;
    QByteArray m_received;
    qsizetype m_lineStart = 0; ///< in m_received
    QQueue<QString> m_lines;

signals:
    /// Something happened that a verb may be waiting for.
    void changed();
};

} // namespace tarvo::test
