#include "simulator/msfs/session/SimConnectSession.h"
#include "simulator/msfs/simconnect/SimConnectBinding.h"
#include "simulator/msfs/simconnect/SimConnectLibrary.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <windows.h>

// Not the whole namespace: Windows has a DWORD and an HRESULT of its own.
namespace msfs = tarvo::simulator::msfs;
using msfs::SimConnectBinding;
using msfs::SimConnectSession;
using msfs::systemSimConnectLibrary;
using msfs::UpdateGroup;

namespace {
const QString newName = QStringLiteral("SimConnect2024.dll");
const QString oldName = QStringLiteral("SimConnect.dll");

/// Where Windows looks for libraries, beside the program's own folder.
void lookIn(const QString &folder)
{
    const QString native = QDir::toNativeSeparators(folder);
    SetDllDirectoryW(reinterpret_cast<const wchar_t *>(native.utf16()));
}

/// One of the three that are built beside this program.
QString built(const QString &folder)
{
    return QCoreApplication::applicationDirPath() + u'/' + folder;
}

bool isLoaded()
{
    return GetModuleHandleW(L"SimConnect.dll") != nullptr;
}

msfs::HRESULT openIt(const SimConnectBinding &binding, msfs::HANDLE &handle)
{
    return binding.functions().Open(&handle, "Test", nullptr, 0, nullptr, 0);
}
} // namespace

/// The binding, as Windows runs it, to the libraries that are there.
class SimConnectDllTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        SetDllDirectoryW(nullptr);
        qunsetenv("TARVO_PRACTICE_MSFS");
    }

    void neitherNameIsThere()
    {
        SimConnectBinding binding(systemSimConnectLibrary());
        QCOMPARE(binding.bind(newName), QStringLiteral("Failed to load SimConnect2024.dll (Win32 error 126)"));
        QCOMPARE(binding.bind(oldName), QStringLiteral("Failed to load SimConnect.dll (Win32 error 126)"));
        QVERIFY(binding.name().isEmpty());
    }

    void isNoLibrary()
    {
        const QTemporaryDir folder;
        QFile file(folder.filePath(oldName));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("MZ?") == 3);
        file.close();
        lookIn(folder.path());
        SimConnectBinding binding(systemSimConnectLibrary());
        QCOMPARE(binding.bind(oldName), QStringLiteral("Failed to load SimConnect.dll (Win32 error 193)"));
    }

    void lacksAnEntryPoint()
    {
        lookIn(built(QStringLiteral("simconnect-lacking")));
        SimConnectBinding binding(systemSimConnectLibrary());
        QCOMPARE(binding.bind(oldName),
                 QStringLiteral("Failed to resolve SimConnect_AIRemoveObject from SimConnect.dll"));
        QVERIFY(!isLoaded());
        QVERIFY(binding.functions().Open == nullptr);
    }

    void lacksWhatIsNewer()
    {
        lookIn(built(QStringLiteral("simconnect-older")));
        SimConnectBinding binding(systemSimConnectLibrary());
        QCOMPARE(binding.bind(oldName), QString());
        QVERIFY(!binding.functions().AICreateNonATCAircraft_EX1);
        QVERIFY(!binding.functions().EnumerateInputEvents);
        QVERIFY(!binding.functions().SubscribeInputEvent);
        msfs::HANDLE handle = nullptr;
        QCOMPARE(openIt(binding, handle), msfs::simConnectOk);
        QCOMPARE(binding.functions().Close(handle), msfs::simConnectOk);
    }

    void refusesToOpen()
    {
        qputenv("TARVO_PRACTICE_MSFS", "refuse");
        lookIn(built(QStringLiteral("simconnect")));
        SimConnectBinding binding(systemSimConnectLibrary());
        QCOMPARE(binding.bind(oldName), QString());
        msfs::HANDLE handle = &binding;
        QCOMPARE(openIt(binding, handle), msfs::simConnectFailed);
        QCOMPARE(handle, nullptr);
    }

    void isFreedAndLoadedAgain()
    {
        lookIn(built(QStringLiteral("simconnect")));
        SimConnectBinding binding(systemSimConnectLibrary());
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(binding.bind(oldName), QString());
            QVERIFY(isLoaded());
            msfs::HANDLE handle = nullptr;
            QCOMPARE(openIt(binding, handle), msfs::simConnectOk);
            msfs::SIMCONNECT_RECV *message = nullptr;
            msfs::DWORD size = 0;
            QCOMPARE(binding.functions().GetNextDispatch(handle, &message, &size), msfs::simConnectOk);
            QCOMPARE(message->dwID, msfs::DWORD{msfs::SIMCONNECT_RECV_ID_OPEN});
            QCOMPARE(binding.functions().Close(handle), msfs::simConnectOk);
            binding.release();
            QVERIFY(!isLoaded());
        }
    }

    void theNewerNameIsFoundToo()
    {
        const QTemporaryDir folder;
        QVERIFY(QFile::copy(built(QStringLiteral("simconnect")) + u'/' + oldName, folder.filePath(newName)));
        lookIn(folder.path());
        SimConnectBinding binding(systemSimConnectLibrary());
        QCOMPARE(binding.bind(newName), QString());
        QCOMPARE(binding.bind(newName), QString());
        QVERIFY(binding.functions().SubscribeInputEvent);
        QVERIFY(!isLoaded());
        QVERIFY(!binding.bind(oldName).isEmpty());
        QVERIFY(!binding.functions().SubscribeInputEvent);
    }

    void aWholeSession()
    {
        qputenv("TARVO_PRACTICE_MSFS", "2024 flight-time=300");
        lookIn(built(QStringLiteral("simconnect")));
        const auto binding = std::make_shared<SimConnectBinding>(systemSimConnectLibrary());
        SimConnectSession session(binding);
        connect(&session, &SimConnectSession::connected, this, [&session] {
            session.registerDefinitions();
            for (const UpdateGroup group : msfs::updateGroups)
                session.subscribeGroup(group);
            session.enumerateInputEvents();
        });
        QMap<UpdateGroup, QVariantMap> newest;
        int positions = 0;
        connect(&session, &SimConnectSession::dataReceived, this, [&](UpdateGroup group, const QVariantMap &data) {
            newest[group] = data;
            positions += group == UpdateGroup::Position ? 1 : 0;
        });
        QSignalSpy errors(&session, &SimConnectSession::errorOccurred);
        QSignalSpy titles(&session, &SimConnectSession::userAircraftTitleDetected);
        QSignalSpy created(&session, &SimConnectSession::remoteAircraftCreated);
        QSignalSpy levers(&session, &SimConnectSession::inputEventValueChanged);
        QVariantList contacts;
        connect(&session, &SimConnectSession::trafficSnapshotReceived, this,
                [&contacts](const QVariantList &rows) { contacts = rows; });
        session.setTrafficEnabled(true);
        QVERIFY(session.open());
        TRY_COMPARE(session.runtimeProfile(), msfs::MsfsRuntimeProfile::Msfs2024);
        TRY_COMPARE(newest.size(), 4);
        TRY_VERIFY(!titles.isEmpty() && !levers.isEmpty());
        QCOMPARE(titles.last().first().toString(), QStringLiteral("Practice A320neo"));

        session.sendCommand(msfs::CommandKey::Com1Frequency, 122'800'000);
        session.setDataValue(msfs::SimKey::TransponderCode, 7654);
        TRY_COMPARE(newest[UpdateGroup::Avionics].value(QStringLiteral("com1Frequency")).toDouble(), 122.8);
        TRY_COMPARE(newest[UpdateGroup::Avionics].value(QStringLiteral("transponderCode")).toInt(), 7654);
        msfs::RemotePosition place{.latitude = 40.07, .longitude = 116.6, .altitudeFeet = 3000};
        session.createRemoteAircraft(7, QStringLiteral("Airbus"), QStringLiteral("Air China"), QStringLiteral("CCA1"),
                                     place);
        TRY_COMPARE(created.size(), 1);
        const quint32 object = created.first().at(1).toUInt();
        place.latitude = 40.08;
        session.updateRemoteAircraftPosition(object, place);
        TRY_VERIFY(contacts.size() == 2 &&
                   contacts.last().toMap().value(QStringLiteral("latitude")).toDouble() == 40.08);
        QCOMPARE(contacts.last().toMap().value(QStringLiteral("label")).toString(), QStringLiteral("CCA1"));

        // Half a minute of the flight as it is: here the library's own clock rules, and no test moves it.
        positions = 0;
        const double low = newest[UpdateGroup::Position].value(QStringLiteral("latitude")).toDouble();
        QElapsedTimer time;
        time.start();
        QTRY_VERIFY_WITH_TIMEOUT(time.hasExpired(30'000), 60'000);
        qInfo("%d positions in half a minute", positions);
        QVERIFY(positions > 300);
        QVERIFY(newest[UpdateGroup::Position].value(QStringLiteral("latitude")).toDouble() != low);

        session.removeRemoteAircraft(object, 8);
        TRY_COMPARE(contacts.size(), 1);
        QCOMPARE(errors.size(), 0);
        session.close();
        binding->release();
        QVERIFY(!isLoaded());
        newest.clear();
        QVERIFY(session.open());
        TRY_COMPARE(newest.size(), 4);
        session.close();
    }

    void aSessionWithoutTheLibrary()
    {
        SimConnectSession session(std::make_shared<SimConnectBinding>(systemSimConnectLibrary()));
        QSignalSpy errors(&session, &SimConnectSession::errorOccurred);
        QVERIFY(!session.open());
        QCOMPARE(errors.size(), 1);
        QCOMPARE(errors.first().at(1).toString(), QStringLiteral("Failed to connect to MSFS via SimConnect: "
                                                                 "Failed to load SimConnect2024.dll (Win32 error 126); "
                                                                 "Failed to load SimConnect.dll (Win32 error 126)"));
    }
};

TARVO_TEST(SimConnectDllTest)
#include "SimConnectDllTest_win.moc"
