#pragma once

#include "support/Patience.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTest>

namespace tarvo::test {

/// A process that starts on a data root as the program does, and what it says.
class InstanceProcess
{
public:
    explicit InstanceProcess(const QString &root, const QString &how = {})
    {
        process.start(QCoreApplication::applicationDirPath() + u"/app_instance"_qs, {root, how});
    }
    ~InstanceProcess()
    {
        process.closeWriteChannel();
        process.waitForFinished();
    }
    InstanceProcess(const InstanceProcess &) = delete;
    InstanceProcess &operator=(const InstanceProcess &) = delete;

    /// The next line; empty when none comes.
    QByteArray line()
    {
        while (!process.canReadLine() && process.waitForReadyRead()) {
        }
        return process.readLine().trimmed();
    }
    int exitCode()
    {
        process.waitForFinished();
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }

    QProcess process;
};

} // namespace tarvo::test
