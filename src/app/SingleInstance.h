#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QObject>
#include <QString>

#include <chrono>

namespace tarvo::app {

/// Keeps two copies of the program from working on one data root. The first start takes the root's lock file and
/// listens; a later one asks it to come forward and ends. The lock of a process that is gone is taken over, and one
/// that names none of this machine unless somebody holds it.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    /// What a start found.
    enum class Outcome
    {
        First,    ///< nobody else works there, or nobody can tell because the root can't be written
        Shown,    ///< another copy runs and has come forward
        NoAnswer, ///< another copy runs, but is busy or hangs
    };

    explicit SingleInstance(const QString &dataRoot, QObject *parent = nullptr);

    /// Takes the lock, or waits up to `patience` for the other copy's answer.
    Outcome start(std::chrono::milliseconds patience = std::chrono::seconds(5));

    /// What start() has for the log, which is opened later; empty when all is well.
    QString warning() const { return m_warning; }

signals:
    /// Another start wants this one's window to come forward.
    void wanted();

private:
    bool takeLock();
    bool hasKnownOwner() const;
    bool nobodyListens() const;
    bool isLeftForGood() const;
    void listen();
    void onConnection();
    bool askOther(std::chrono::milliseconds patience) const;

    QString m_root;
    QString m_serverName;
    QLockFile m_lock;
    QLocalServer m_server;
    QString m_warning;
};

} // namespace tarvo::app
