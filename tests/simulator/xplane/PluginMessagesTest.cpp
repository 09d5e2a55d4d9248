#include "simulator/xplane/PluginMessages.h"
#include "XPlaneBench.h"
#include "model/VelocityVector.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::simulator::xplane;
using namespace tarvo::model;
using tarvo::test::remoteAircraft;
using tarvo::test::station;

namespace {

/// Bytes as hexadecimal text; blanks and everything between brackets are for the reader.
QByteArray bytes(const char *commentedHex)
{
    QByteArray hex;
    bool comment = false;
    for (const char *c = commentedHex; *c != '\0'; ++c) {
        if (*c == '(' || *c == ')')
            comment = *c == '(';
        else if (!comment)
            hex.append(*c);
    }
    return QByteArray::fromHex(hex);
}

/// An ACCONF of CCA1 whose eleven further arguments are `arguments`.
QByteArray acconf(const char *arguments)
{
    return bytes("92 a6 41 43 43 4f 4e 46 (ACCONF) 9c a4 43 43 41 31 (CCA1)") + bytes(arguments);
}

} // namespace

class PluginMessagesTest : public QObject
{
    Q_OBJECT

private slots:
    /// What the golden file leaves open.
    void messageIs_data()
    {
        QTest::addColumn<QByteArray>("message");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("CONN as observer") << message::networkConnected(QStringLiteral("CCA1"), QString(), true)
                                          << bytes("92 a4 43 4f 4e 4e 93 a4 43 43 41 31 a0 c3");
        QTest::newRow("RDIOSENT empty") << message::radioSent(QString())
                                        << bytes("92 a8 52 44 49 4f 53 45 4e 54 91 a0");
        QTest::newRow("RDIORCVD not direct") << message::radioReceived(QStringLiteral("B"), QStringLiteral("hi"), false)
                                             << bytes("92 a8 52 44 49 4f 52 43 56 44 93 a1 42 a2 68 69 c2");
        QTest::newRow("NOTIF in black") << message::notification(QStringLiteral("hi"), 0)
                                        << bytes("92 a5 4e 4f 54 49 46 92 a2 68 69 00");
        addControllerMessages();
    }

    void messageIs()
    {
        QFETCH(QByteArray, message);
        QFETCH(QByteArray, expected);
        QCOMPARE(message.toHex(' '), expected.toHex(' '));
    }

    void configurationIs_data()
    {
        QTest::addColumn<AircraftConfiguration>("configuration");
        QTest::addColumn<QByteArray>("expected");
        addPlainConfigurations();
        addEngineConfigurations();
        addFlapConfigurations();
    }

    void configurationIs()
    {
        QFETCH(AircraftConfiguration, configuration);
        QFETCH(QByteArray, expected);
        RemoteAircraft one = remoteAircraft();
        one.configuration = configuration;
        QCOMPARE(message::configuration(one).toHex(' '), expected.toHex(' '));
    }

    void longTextsGetLongerHeads_data()
    {
        QTest::addColumn<int>("length");
        QTest::addColumn<QByteArray>("head");
        QTest::newRow("31") << 31 << bytes("bf");
        QTest::newRow("32") << 32 << bytes("d9 20");
        QTest::newRow("255") << 255 << bytes("d9 ff");
        QTest::newRow("256") << 256 << bytes("da 01 00");
        QTest::newRow("65535") << 65535 << bytes("da ff ff");
        QTest::newRow("65536") << 65536 << bytes("db 00 01 00 00");
    }

    void longTextsGetLongerHeads()
    {
        QFETCH(int, length);
        QFETCH(QByteArray, head);
        const QByteArray text(length, 'x');
        QCOMPARE(message::radioSent(QString::fromLatin1(text)),
                 bytes("92 a8 52 44 49 4f 53 45 4e 54 91") + head + text);
    }

    void notANumberIsStillAFloat64()
    {
        AircraftVisualState unknown;
        unknown.latitude = std::numeric_limits<double>::quiet_NaN();
        const QByteArray packed = message::position(remoteAircraft(), unknown);
        QVERIFY(packed.startsWith(bytes("92 a3 50 4f 53 99 a4 43 43 41 31 cb 7f f8 00 00 00 00 00 00 cb")));
    }

private:
    static void addControllerMessages()
    {
        const QByteArray nobody = bytes("92 a3 41 54 43 91 90");
        QTest::newRow("ATC with nobody to list")
            << message::controllers({station(QStringLiteral("A"), 199998), station(QStringLiteral("B"), 118275, false)})
            << nobody;
        QTest::newRow("ATC") << message::controllers(
                                    {station(QStringLiteral("A"), 118275), station(QStringLiteral("B"), 199998),
                                     station(QStringLiteral("C"), 121500, false), station(QStringLiteral("D"), 121800)})
                             << bytes(
                                    "92 a3 41 54 43 91 92"
                                    "94 a1 41 a7 55 6e 6b 6e 6f 77 6e (Unknown) a7 31 31 38 2e 32 37 35 ce 00 01 ce 03"
                                    "94 a1 44 a7 55 6e 6b 6e 6f 77 6e a7 31 32 31 2e 38 30 30 ce 00 01 db c8");
        QTest::newRow("STATION_CALLSIGN of nobody")
            << message::stationCallsign(2, QString())
            << bytes("92 b0 53 54 41 54 49 4f 4e 5f 43 41 4c 4c 53 49 47 4e 92 02 a0");
    }

    static void addPlainConfigurations()
    {
        AircraftConfiguration config;
        QTest::newRow("nothing known") << config << acconf("c0 c0 c0 c0 c0 c0 c0 c0 c0 c0 c0");
        config.gearDown = true;
        QTest::newRow("gear alone") << config << acconf("c0 c0 c0 c0 c0 c3 c0 c0 c0 c0 c0");
        config.isFullData = false;
        QTest::newRow("full is never false") << config << acconf("c0 c0 c0 c0 c0 c3 c0 c0 c0 c0 c0");
        config.spoilersOut = true;
        QTest::newRow("spoilers do not travel") << config << acconf("c0 c0 c0 c0 c0 c3 c0 c0 c0 c0 c0");
        config.isFullData = true;
        QTest::newRow("full") << config << acconf("c3 c0 c0 c0 c0 c3 c0 c0 c0 c0 c0");
        config = {};
        config.onGround = false;
        QTest::newRow("in the air") << config << acconf("c0 c0 c0 c2 c0 c0 c0 c0 c0 c0 c0");
        const auto addLight = [](const char *name, std::optional<bool> AircraftConfiguration::Lights::*light,
                                 const char *arguments) {
            AircraftConfiguration lit;
            lit.lights.present = true;
            lit.lights.*light = true;
            QTest::newRow(name) << lit << acconf(arguments);
        };
        using Lights = AircraftConfiguration::Lights;
        addLight("beacon", &Lights::beaconOn, "c0 c0 c0 c0 c0 c0 c3 c0 c0 c0 c0");
        addLight("landing lights", &Lights::landingOn, "c0 c0 c0 c0 c0 c0 c0 c3 c0 c0 c0");
        addLight("navigation lights", &Lights::navOn, "c0 c0 c0 c0 c0 c0 c0 c0 c3 c0 c0");
        addLight("strobes", &Lights::strobeOn, "c0 c0 c0 c0 c0 c0 c0 c0 c0 c3 c0");
        addLight("taxi lights", &Lights::taxiOn, "c0 c0 c0 c0 c0 c0 c0 c0 c0 c0 c3");
    }

    static void addEngineConfigurations()
    {
        AircraftConfiguration config;
        config.engines.present = true;
        QTest::newRow("engines without a value") << config << acconf("c0 c0 c0 c0 c0 c0 c0 c0 c0 c0 c0");
        config.engines.engine[2].isReversing = true;
        QTest::newRow("reversing alone: engines off") << config << acconf("c0 c2 c3 c0 c0 c0 c0 c0 c0 c0 c0");
        config.engines.engine[3].on = true;
        QTest::newRow("one on, another reversing") << config << acconf("c0 c3 c3 c0 c0 c0 c0 c0 c0 c0 c0");
        config.engines.present = false;
        QTest::newRow("values without the block") << config << acconf("c0 c0 c0 c0 c0 c0 c0 c0 c0 c0 c0");
        config = {};
        config.engines.present = true;
        config.engines.engine[0].on = false;
        QTest::newRow("one off: not reversing") << config << acconf("c0 c2 c2 c0 c0 c0 c0 c0 c0 c0 c0");
    }

    static void addFlapConfigurations()
    {
        const auto addFlaps = [](const char *name, int percent, const char *float32) {
            AircraftConfiguration config;
            config.flapsPct = percent;
            QTest::newRow(name) << config
                                << acconf("c0 c0 c0 c0") + bytes("ca") + bytes(float32) + bytes("c0 c0 c0 c0 c0 c0");
        };
        addFlaps("flaps 0", 0, "00 00 00 00");
        addFlaps("flaps 25", 25, "3e 80 00 00");
        addFlaps("flaps 29", 29, "3e 94 7a e1"); // 0.29F
        addFlaps("flaps 100", 100, "3f 80 00 00");
        addFlaps("flaps beyond", 250, "40 20 00 00");
        addFlaps("flaps negative", -50, "bf 00 00 00");
    }
};

TARVO_TEST(PluginMessagesTest)
#include "PluginMessagesTest.moc"
