#pragma once

#include <nng/nng.h>

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariantList>

#include <mutex>
#include <thread>
#include <vector>

namespace tarvo::test {

/// The plugin inside X-Plane, played on an nng address: keeps what arrives, and sends messages or any bytes.
class PluginPeer : public QObject
{
    Q_OBJECT

public:
    /// Listens at once, at an address such as one of PluginAddressDir's.
    explicit PluginPeer(const QString &url, QObject *parent = nullptr);
    ~PluginPeer() override;

    /// All that arrived since the beginning or the last clear(), packed as it came.
    QList<QByteArray> messages() const;
    /// The names of those messages; an empty name for one that is no message.
    QStringList names() const;
    qsizetype count(const QString &name) const { return names().count(name); }
    /// The arguments of the last message of that name.
    QVariantList arguments(const QString &name) const;
    void clear();

    /// True while a client is connected.
    bool hasClient() const;

    void sendRaw(const QByteArray &bytes);
    /// Argument types: bool, int, double, QString, a list of these, or an invalid QVariant for nil.
    void send(const QString &name, const QVariantList &arguments = {});

signals:
    /// Raised on the main thread when something arrived: look at messages().
    void arrived();

private:
    void receiveLoop();
    static void onPipeEvent(nng_pipe pipe, nng_pipe_ev event, void *peer);

    nng_socket m_socket = NNG_SOCKET_INITIALIZER;
    nng_aio *m_receive = nullptr;
    std::thread m_thread;
    mutable std::mutex m_mutex;
    std::vector<QByteArray> m_messages; // no QList: a copy would share its elements with the thread that appends
    int m_clients = 0;
};

/// An nng address on this machine for one test, in a folder of its own.
class PluginAddressDir
{
public:
    PluginAddressDir();

    /// Nobody else's address; the same at every call. On Windows a TCP port: nng's named pipes hang there now and then
    /// when they close, and then all that come after them.
    QString url() const { return m_url; }
    /// From now on a local socket or named pipe, on Windows too.
    void useIpc() { m_url = QStringLiteral("ipc://%1/plugin.ipc").arg(m_folder.path()); }

private:
    QTemporaryDir m_folder;
    QString m_url;
};

/// One message as the plugin would pack it.
QByteArray packPluginMessage(const QString &name, const QVariantList &arguments = {});

} // namespace tarvo::test
