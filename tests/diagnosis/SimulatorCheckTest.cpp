#include "diagnosis/SimulatorCheck.h"
#include "diagnosis/SoundCheck.h"
#include "diagnosis/TestSettings.h"
#include "practice/PluginDialer.h"
#include "practice/xplane/PluginStandIn.h"
#include "simulator/msfs/simconnect/SimConnectBinding.h"
#include "simulator/msfs/simconnect/SimConnectLibrary.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QLocalServer>
#include <QSignalSpy>
#include <QUdpSocket>

#include <thread>

using namespace tarvo;
using namespace tarvo::diagnosis;
using namespace std::chrono_literals;
using tarvo::test::marksOf;

namespace {

const QHostAddress loopback(QHostAddress::LocalHost);

/// Has every entry point, in one library only.
class OneLibrary : public simulator::msfs::SimConnectLibrary
{
public:
    explicit OneLibrary(const QString &name) : m_name(name) {}
    quint32 load(const QString &name) override { return name == m_name ? 0 : 126; }
    void *entryPoint(const char *) override { return this; }
    void free() override {}

private:
    QString m_name;
};

} // namespace

/// Simulators and sound.
class SimulatorCheckTest : public QObject
{
    Q_OBJECT

private slots:
    void xplaneAnswersOrNot_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<bool>("answers");
        QTest::newRow("a value") << QByteArray("RREF,\0\0\0\0\0\0\0\0", 13) << true;
        QTest::newRow("something else") << QByteArray("DATA*") << false;
        QTest::newRow("silence") << QByteArray() << false;
    }
    void xplaneAnswersOrNot()
    {
        QFETCH(const QByteArray, answer);
        QFETCH(const bool, answers);
        QUdpSocket xplane;
        QVERIFY(xplane.bind(loopback));
        bool answered = !answers;
        std::thread checking(
            [&, port = xplane.localPort()] { answered = xplaneAnswers(loopback, port, answers ? 5000ms : 20ms); });
        QByteArray asked(1000, '\0');
        QHostAddress host;
        quint16 port = 0;
        if (xplane.waitForReadyRead(5000))
            asked.truncate(xplane.readDatagram(asked.data(), asked.size(), &host, &port));
        if (!answer.isEmpty())
            xplane.writeDatagram(answer, host, port);
        checking.join();
        QCOMPARE(answered, answers);
        QVERIFY(asked.startsWith(QByteArray("RREF\0\x14\0\0\0", 9))); // 20 times a second
        QVERIFY(xplane.waitForReadyRead(5000));
        asked.resize(1000);
        asked.truncate(xplane.readDatagram(asked.data(), asked.size()));
        QVERIFY(asked.startsWith(QByteArray("RREF\0\0\0\0\0", 9))); // and no more
    }

    void xplaneIsJudged()
    {
        QCOMPARE(judgeXPlane(loopback, 49000, true).detail, u"UDP 127.0.0.1:49000 有应答"_qs);
        QCOMPARE(judgeXPlane(loopback, 49000, false).mark, Mark::Bad);
        QCOMPARE(judgeXPlane({}, 49000, false).detail, u"设置中的地址不是 IP 地址"_qs);
    }

    void socketNames()
    {
        const QString url = u"ipc:///tmp//tarvoclient.ipc"_qs;
        QCOMPARE(localSocketName(url, false), u"/tmp//tarvoclient.ipc"_qs);
        QCOMPARE(localSocketName(url, true), u"\\\\.\\pipe\\/tmp//tarvoclient.ipc"_qs);
    }

    void thePluginIsLookedAtAndStaysFree()
    {
        const QTemporaryDir folder;
        const QString name = folder.filePath(u"p.ipc"_qs);
        QCOMPARE(lookAtPlugin(name, 1s), PluginState::Nobody);
        practice::PluginStandIn plugin;
        QVERIFY(plugin.listen(u"ipc://"_qs + name));
        for (int i = 0; i < 3; ++i)
            QCOMPARE(lookAtPlugin(name, 5s), PluginState::Plugin);
        QSignalSpy heard(&plugin, &practice::PluginStandIn::bytesReceived);
        test::PluginDialer client(plugin.url());
        QVERIFY(client.send("\x92\xa3VER\x90"));
        TRY_COMPARE(heard.size(), 1);
        QCOMPARE(lookAtPlugin(name, 5s), PluginState::Plugin); // also while the client has it
        QVERIFY(client.send("\x92\xa3VER\x90"));
        TRY_COMPARE(heard.size(), 2);
    }

    void aStrangerIsNoPlugin()
    {
        const QTemporaryDir folder;
        QLocalServer server;
        QVERIFY(server.listen(folder.filePath(u"p.ipc"_qs)));
        QCOMPARE(lookAtPlugin(server.fullServerName(), 20ms), PluginState::Stranger);
    }

    void thePluginIsJudged()
    {
        QCOMPARE(judgePlugin(PluginState::Plugin).mark, Mark::Good);
        QCOMPARE(judgePlugin(PluginState::Nobody).mark, Mark::Bad);
        QCOMPARE(judgePlugin(PluginState::Stranger).mark, Mark::Bad);
        QVERIFY(judgePlugin(PluginState::Nobody).advice != judgePlugin(PluginState::Stranger).advice);
    }

    void simConnectIsBoundAsTheClientDoes_data()
    {
        QTest::addColumn<QString>("library");
        QTest::addColumn<QString>("detail");
        QTest::newRow("of 2024") << u"SimConnect2024.dll"_qs << u"SimConnect2024.dll 可用"_qs;
        QTest::newRow("of 2020") << u"SimConnect.dll"_qs << u"SimConnect.dll 可用"_qs;
        QTest::newRow("none") << QString()
                              << u"Failed to load SimConnect2024.dll (Win32 error 126)；"
                                 "Failed to load SimConnect.dll (Win32 error 126)"_qs;
    }
    void simConnectIsBoundAsTheClientDoes()
    {
        QFETCH(const QString, library);
        simulator::msfs::SimConnectBinding binding(std::make_unique<OneLibrary>(library));
        const Finding finding = judgeSimConnect(binding, true);
        QTEST(finding.detail, "detail");
        QCOMPARE(finding.mark, library.isEmpty() ? Mark::Bad : Mark::Good);
        QCOMPARE(judgeSimConnect(binding, false).mark, Mark::Skipped);
    }

    void soundIsJudged_data()
    {
        QTest::addColumn<QStringList>("inputs");
        QTest::addColumn<QStringList>("outputs");
        QTest::addColumn<QString>("chosenInput");
        QTest::addColumn<QString>("chosenSpeaker");
        QTest::addColumn<QStringList>("marks");
        const QStringList some{u"mic"_qs, u"spk"_qs};
        const QString standard = u"Default"_qs;
        const QStringList good{u"✓ 麦克风"_qs, u"✓ 耳机和扬声器"_qs};
        QTest::newRow("defaults") << some << some << standard << standard << good;
        QTest::newRow("chosen") << some << some << u"mic"_qs << u"spk"_qs << good;
        QTest::newRow("no microphone") << QStringList() << some << standard << standard
                                       << QStringList{u"✗ 麦克风"_qs, u"✓ 耳机和扬声器"_qs};
        QTest::newRow("no loudspeaker") << some << QStringList() << standard << standard
                                        << QStringList{u"✓ 麦克风"_qs, u"✗ 耳机和扬声器"_qs};
        QTest::newRow("the chosen ones are gone")
            << some << some << u"other"_qs << u"other"_qs << QStringList{u"✗ 麦克风"_qs, u"✗ 耳机和扬声器"_qs};
    }
    void soundIsJudged()
    {
        QFETCH(const QStringList, inputs);
        QFETCH(const QStringList, outputs);
        StoredSettings settings;
        QFETCH(const QString, chosenInput);
        QFETCH(const QString, chosenSpeaker);
        settings.values[u"Voice/InputDevice"_qs] = chosenInput;
        settings.values[u"Voice/OutputSpeakerDevice"_qs] = chosenSpeaker;
        QTEST(marksOf(judgeSound(SoundFacts{inputs, outputs}, settings)), "marks");
    }

    void soundIsReadFromAnotherProcess()
    {
        const SoundFacts facts = readSound("noise\nin mic a\r\nout spk a\nout spk b\n");
        QCOMPARE(facts.inputs, QStringList{u"mic a"_qs});
        QCOMPARE(facts.outputs, (QStringList{u"spk a"_qs, u"spk b"_qs}));
        QVERIFY(!lookAtSound(u"/none"_qs, 5s));
        const QTemporaryDir folder;
        QFile program(folder.filePath(u"p"_qs));
        QVERIFY(program.open(QIODevice::WriteOnly));
        program.write("#!/bin/sh\nexec sleep 60\n");
        program.close();
        program.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
        QVERIFY(!lookAtSound(program.fileName(), 20ms));
    }

    void soundThatHangsIsAFault() { QCOMPARE(marksOf(judgeSound(std::nullopt, {})), {u"✗ 声音"_qs}); }
};

TARVO_TEST(SimulatorCheckTest)
#include "SimulatorCheckTest.moc"
