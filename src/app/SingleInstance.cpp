#include "app/SingleInstance.h"

#include "DataFolders.h"
#include "app/InstanceRights.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>
#include <QSysInfo>
#include <QThread>

namespace tarvo::app {

namespace {

constexpr char wish[] = "show\n";
constexpr char answer[] = "shown\n";

/// One name for each root, however the path to it is written, and short enough for a socket.
QString serverName(const QString &dataRoot)
{
    const QString canonical = QFileInfo(dataRoot).canonicalFilePath();
    const QByteArray hash =
        QCryptographicHash::hash((canonical.isEmpty() ? dataRoot : canonical).toUtf8(), QCryptographicHash::Sha256);
    return privateServerName(QStringLiteral("TarvoClient-") + QString::fromLatin1(hash.toHex().left(16)));
}

int left(const QDeadlineTimer &deadline)
{
    return static_cast<int>(deadline.remainingTime());
}

} // namespace

SingleInstance::SingleInstance(const QString &dataRoot, QObject *parent)
    : QObject(parent),
      m_root(dataRoot),
      m_serverName(serverName(dataRoot)),
      m_lock(QDir(dataRoot).filePath(QStringLiteral("TarvoClient.lock"))),
      m_server(this)
{
    m_lock.setStaleLockTime(0); // a program may run for days; only one that is gone loses its lock
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::onConnection);
}

SingleInstance::Outcome SingleInstance::start(std::chrono::milliseconds patience)
{
    if (takeLock())
        listen();
    else if (m_lock.error() == QLockFile::LockFailedError && !isLeftForGood())
        return askOther(patience) ? Outcome::Shown : Outcome::NoAnswer;
    else
        m_warning =
            QStringLiteral("Another start is not kept out: the lock file can't be written (%1)").arg(m_lock.error());
    return Outcome::First;
}

bool SingleInstance::takeLock()
{
    if (m_lock.tryLock(0))
        return true;
    // Qt doesn't judge a lock file that was cut by a crash, or that another machine has written. Whoever still has the
    // file open keeps it.
    return m_lock.error() == QLockFile::LockFailedError && !hasKnownOwner() && nobodyListens() &&
           m_lock.removeStaleLockFile() && m_lock.tryLock(0);
}

/// The lock names a process of this machine, of which Qt knows whether it runs.
bool SingleInstance::hasKnownOwner() const
{
    qint64 pid = 0;
    QString host;
    QString program;
    return m_lock.getLockInfo(&pid, &host, &program) && host == QSysInfo::machineHostName();
}

bool SingleInstance::nobodyListens() const
{
    QLocalSocket socket;
    socket.connectToServer(m_serverName);
    return !socket.waitForConnected(0) && (socket.error() == QLocalSocket::ServerNotFoundError ||
                                           socket.error() == QLocalSocket::ConnectionRefusedError);
}

/// The lock file can't be taken away, because the root has become read-only, and nobody is there.
bool SingleInstance::isLeftForGood() const
{
    return nobodyListens() && !isWritableFolder(m_root);
}

void SingleInstance::listen()
{
    QLocalServer::removeServer(m_serverName); // of a process that was killed; whoever has the lock may
    if (!m_server.listen(m_serverName))
        m_warning = QStringLiteral("Another start can't bring this one forward: %1").arg(m_server.errorString());
}

void SingleInstance::onConnection()
{
    while (QLocalSocket *other = m_server.nextPendingConnection()) {
        connect(other, &QLocalSocket::disconnected, other, &QObject::deleteLater);
        connect(other, &QLocalSocket::readyRead, this, [this, other] {
            if (!other->canReadLine() || other->readLine() != wish)
                return;
            emit wanted();
            other->write(answer);
            other->flush();
        });
    }
}

bool SingleInstance::askOther(std::chrono::milliseconds patience) const
{
    const QDeadlineTimer deadline(patience);
    qint64 pid = 0;
    QString host;
    QString program;
    if (m_lock.getLockInfo(&pid, &host, &program))
        letComeForward(pid);
    QLocalSocket socket;
    // Between taking the lock and listening the other one can't be reached yet.
    for (socket.connectToServer(m_serverName); !socket.waitForConnected(left(deadline)) && !deadline.hasExpired();
         socket.connectToServer(m_serverName))
        QThread::msleep(10);
    socket.write(wish);
    while (!socket.canReadLine() && socket.waitForReadyRead(left(deadline))) {
    }
    return socket.readLine() == answer;
}

} // namespace tarvo::app
