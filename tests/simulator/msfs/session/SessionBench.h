#pragma once

#include "practice/simconnect/Messages.h"
#include "practice/simconnect/SimConnectStandIn.h"
#include "simulator/msfs/session/SimConnectSession.h"
#include "simulator/msfs/simconnect/SimConnectBinding.h"
#include "simulator/msfs/simconnect/SimConnectLibrary.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/SourceFolder.h"

#include <QFile>
#include <QMetaObject>
#include <QSignalSpy>
#include <QTimer>

#include <memory>

namespace tarvo::test {

namespace message = practice::message;
using simulator::msfs::CommandKey;
using simulator::msfs::MsfsRuntimeProfile;
using simulator::msfs::RemotePosition;
using simulator::msfs::SimConnectError;
using simulator::msfs::SimKey;
using simulator::msfs::UpdateGroup;

inline const QString library2024 = QStringLiteral("SimConnect2024.dll");
inline const QString library2020 = QStringLiteral("SimConnect.dll");

/// A session over the stand-in's library, and the log meanwhile.
struct SessionBench
{
    LogCapture log;
    practice::SimConnectStandIn standIn;
    ManualClock clock;
    simulator::msfs::SimConnectSession session{std::make_shared<simulator::msfs::SimConnectBinding>(standIn.library()),
                                               nullptr, clock};
    QSignalSpy errors{&session, &simulator::msfs::SimConnectSession::errorOccurred};
    QSignalSpy samples{&session, &simulator::msfs::SimConnectSession::dataReceived};

    /// Opens it through the library of 2020, or of 2024, and forgets the calls.
    bool open(const QString &library = library2020)
    {
        standIn.setLibraryNames({library});
        const bool opened = session.open();
        standIn.takeCalls();
        return opened;
    }
    bool openAndRegister(const QString &library = library2020)
    {
        const bool opened = open(library);
        session.registerDefinitions();
        standIn.takeCalls();
        return opened;
    }

    QTimer *timer(const char *name) const { return session.findChild<QTimer *>(QLatin1String(name)); }
    void tick(const char *name) { QMetaObject::invokeMethod(timer(name), "timeout", Qt::DirectConnection); }
    /// Lets the session take what waits.
    void pump() { tick("dispatch"); }
    /// The session gets this message, and what else waits.
    void send(const QByteArray &bytes)
    {
        standIn.queue(bytes);
        pump();
    }

    /// The only error so far; its text, or how many there are.
    QString error() const
    {
        return errors.size() == 1 ? errors.first().at(1).toString() : QStringLiteral("%1 errors").arg(errors.size());
    }
};

/// One that is open.
struct OpenBench : SessionBench
{
    explicit OpenBench(const QString &library = library2020) { open(library); }
};

/// One whose groups are defined, too.
struct DefinedBench : SessionBench
{
    explicit DefinedBench(const QString &library = library2020) { openAndRegister(library); }
};

inline QString line(const char *text)
{
    return QLatin1String(text);
}

/// Lines, one a row.
inline QStringList lines(const char *text)
{
    return QString::fromUtf8(text).split(u'\n', Qt::SkipEmptyParts);
}

/// What defines the four groups, by the golden table of variables.
inline QStringList groupCalls()
{
    constexpr const char *dataTypes[] = {"4", "1", "1", "9"};
    QFile table(sourceFile(QStringLiteral("tests/simulator/msfs/simvar/golden/simvars.txt")));
    QStringList calls;
    if (!table.open(QIODevice::ReadOnly | QIODevice::Text))
        return calls;
    for (const QString &row : QString::fromUtf8(table.readAll()).split(u'\n', Qt::SkipEmptyParts).sliced(1)) {
        const QStringList cells = row.split(QStringLiteral(" | "));
        if (cells.at(7) == QStringLiteral("yes"))
            calls.append(
                QStringLiteral("AddToDataDefinition %1 \"%2\" \"%3\" %4 0 4294967295")
                    .arg(cells.at(1), cells.at(4), cells.at(5), QLatin1String(dataTypes[cells.at(2).toInt()])));
    }
    return calls;
}

inline QStringList titleCalls()
{
    return lines("AddToDataDefinition 50000 \"TITLE\" null 9 0 4294967295\n"
                 "RequestDataOnSimObject 50001 50000 0 1 0 0 0 0");
}

inline QStringList trafficCalls()
{
    return lines("AddToDataDefinition 40000 \"ATC ID\" null 7 0 4294967295\n"
                 "AddToDataDefinition 40000 \"PLANE LATITUDE\" \"degrees\" 4 0 4294967295\n"
                 "AddToDataDefinition 40000 \"PLANE LONGITUDE\" \"degrees\" 4 0 4294967295\n"
                 "RequestDataOnSimObjectType 40001 40000 30000 2");
}

} // namespace tarvo::test
