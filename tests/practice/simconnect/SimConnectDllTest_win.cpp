#include "simulator/msfs/simconnect/SimConnectBinding.h"
#include "simulator/msfs/simconnect/SimConnectLibrary.h"
#include "support/TestRegistry.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <windows.h>

// Not the whole namespace: Windows has a DWORD and an HRESULT of its own.
namespace msfs = tarvo::simulator::msfs;
using msfs::SimConnectBinding;
using msfs::systemSimConnectLibrary;

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
};

TARVO_TEST(SimConnectDllTest)
#include "SimConnectDllTest_win.moc"
