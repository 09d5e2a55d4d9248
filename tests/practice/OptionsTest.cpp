#include "practice/Options.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::practice;

class OptionsTest : public QObject
{
    Q_OBJECT

    static std::optional<Options> read(const QStringList &arguments, QString *error)
    {
        return readOptions(QStringList{QStringLiteral("tarvo-practice")} + arguments, error);
    }

private slots:
    void defaultsAreTheNetworksOwn()
    {
        QString error;
        const auto options = read({}, &error);
        QVERIFY(options);
        QCOMPARE(options->network.httpPort, 8080);
        QCOMPARE(options->network.fsdPort, 6809);
        QCOMPARE(options->network.xplanePort, 49000);
        QCOMPARE(options->network.voiceTcpPort, 6808);
        QCOMPARE(options->network.voiceUdpPort, 6807);
        QCOMPARE(options->network.voice.weather.lossPercent, 0.0);
        QCOMPARE(options->network.voice.weather.jitterMs, 0);
        QCOMPARE(options->network.voice.weather.duplicatePercent, 0.0);
        QCOMPARE(options->network.pluginUrl, QStringLiteral("ipc:///tmp//tarvoclient.ipc"));
        QCOMPARE(options->network.address, QHostAddress(QHostAddress::LocalHost));
        QVERIFY(options->network.secondAddress.isNull());
        QCOMPARE(options->network.fsd.pingIntervalMs, 30'000);
        QCOMPARE(options->accessLife, 3600);
        QVERIFY(!options->quiet);
        QVERIFY(options->network.residents.present);
        QCOMPARE(options->network.residents.broadcastIntervalMs, 300'000);
        QVERIFY(options->network.voicePeople.present);
        QCOMPARE(options->network.voicePeople.speakers, 0);
        QCOMPARE(options->network.crowd.pilots, 0);
        QVERIFY(options->replay.isEmpty() && !options->network.replay.stepwise);
        QCOMPARE(options->network.replay.speed, 1.0);
        QCOMPARE(options->network.crowd.rateHz, 5.0);
    }

    void aScriptBringsItsOwnPeople()
    {
        QString error;
        const auto options = read({QStringLiteral("--script"), QStringLiteral("a.script")}, &error);
        QVERIFY2(options, qPrintable(error));
        QCOMPARE(options->script, QStringLiteral("a.script"));
        QVERIFY(!options->network.residents.present);
        QVERIFY(!options->network.voicePeople.present);
    }

    void aReplayIsAlone()
    {
        QString error;
        const auto options =
            read({QStringLiteral("--replay=a.log"), QStringLiteral("--speed=2.5"), QStringLiteral("--step")}, &error);
        QVERIFY2(options, qPrintable(error));
        QCOMPARE(options->replay, QStringLiteral("a.log"));
        QCOMPARE(options->network.replay.speed, 2.5);
        QVERIFY(options->network.replay.stepwise);
        QVERIFY(!options->network.residents.present && !options->network.voicePeople.present);
        QVERIFY(!read({QStringLiteral("--replay=a.log"), QStringLiteral("--script=a.script")}, &error));
    }

    void readsWhatIsGiven()
    {
        QString error;
        const auto options = read(
            {QStringLiteral("--http-port"), QStringLiteral("0"), QStringLiteral("--token-life=5"),
             QStringLiteral("--second-address=127.0.0.2"), QStringLiteral("--quiet"), QStringLiteral("--range=2.5"),
             QStringLiteral("--flight-time=200"), QStringLiteral("--no-simulator"), QStringLiteral("--no-residents"),
             QStringLiteral("--pilots=500"), QStringLiteral("--rate=2.5"), QStringLiteral("--broadcast=10"),
             QStringLiteral("--voice-port=1"), QStringLiteral("--voice-udp-port=2"), QStringLiteral("--voice-loss=2.5"),
             QStringLiteral("--voice-jitter=40"), QStringLiteral("--voice-duplicate=3"),
             QStringLiteral("--voice-speakers=40"), QStringLiteral("--voice-frequencies=5")},
            &error);
        QVERIFY2(options, qPrintable(error));
        QCOMPARE(options->network.httpPort, 0);
        QCOMPARE(options->accessLife, 5);
        QCOMPARE(options->network.secondAddress, QHostAddress(QStringLiteral("127.0.0.2")));
        QCOMPARE(options->network.fsd.relayRangeNm, 2.5);
        QCOMPARE(options->flightTime, 200.0);
        QVERIFY(options->quiet);
        QVERIFY(!options->network.simulator);
        QVERIFY(!options->network.residents.present);
        QCOMPARE(options->network.residents.broadcastIntervalMs, 10'000);
        QCOMPARE(options->network.crowd.pilots, 500);
        QCOMPARE(options->network.crowd.rateHz, 2.5);
        QCOMPARE(options->network.voiceTcpPort, 1);
        QCOMPARE(options->network.voiceUdpPort, 2);
        QCOMPARE(options->network.voice.weather.lossPercent, 2.5);
        QCOMPARE(options->network.voice.weather.jitterMs, 40);
        QCOMPARE(options->network.voice.weather.duplicatePercent, 3.0);
        QCOMPARE(options->network.voicePeople.speakers, 40);
        QCOMPARE(options->network.voicePeople.frequencies, 5);
    }

    void refusesNonsense_data()
    {
        QTest::addColumn<QString>("argument");
        QTest::newRow("port too high") << QStringLiteral("--fsd-port=65536");
        QTest::newRow("port of letters") << QStringLiteral("--fsd-port=fsd");
        QTest::newRow("more lost than sent") << QStringLiteral("--voice-loss=101");
        QTest::newRow("too many voices") << QStringLiteral("--voice-speakers=101");
        QTest::newRow("voices nowhere") << QStringLiteral("--voice-frequencies=0");
        QTest::newRow("negative jitter") << QStringLiteral("--voice-jitter=-1");
        QTest::newRow("negative life") << QStringLiteral("--token-life=-1");
        QTest::newRow("too many pilots") << QStringLiteral("--pilots=5001");
        QTest::newRow("pilots that never move") << QStringLiteral("--rate=0");
        QTest::newRow("a replay that stands still") << QStringLiteral("--speed=0");
        QTest::newRow("no number") << QStringLiteral("--range=nan");
        QTest::newRow("the world's address") << QStringLiteral("--address=0.0.0.0");
        QTest::newRow("another machine's address") << QStringLiteral("--second-address=192.0.2.1");
        QTest::newRow("name as address") << QStringLiteral("--address=localhost");
        QTest::newRow("unknown option") << QStringLiteral("--fly");
        QTest::newRow("stray word") << QStringLiteral("fly");
    }

    void refusesNonsense()
    {
        QFETCH(QString, argument);
        QString error;
        QVERIFY(!read({argument}, &error));
        QVERIFY(!error.isEmpty());
    }

    void informs()
    {
        QString error;
        QVERIFY(read({QStringLiteral("--help")}, &error)->information.contains(QStringLiteral("--fsd-port")));
        QVERIFY(read({QStringLiteral("--version")}, &error)->information.startsWith(QStringLiteral("tarvo-practice")));
    }
};

TARVO_TEST(OptionsTest)
#include "OptionsTest.moc"
