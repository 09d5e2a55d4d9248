#include "practice/PracticeNetwork.h"
#include "support/ManualClock.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QHash>
#include <QNetworkDatagram>
#include <QSignalSpy>
#include <QTest>
#include <QUdpSocket>
#include <QtEndian>

#include <memory>

using namespace tarvo::practice;
using tarvo::test::ManualClock;

namespace {
QByteArray packet(const char *kind, qsizetype size)
{
    QByteArray bytes(size, '\0');
    bytes.replace(0, 4, kind);
    return bytes;
}

QByteArray rref(int rate, int id, const QByteArray &name)
{
    QByteArray bytes = packet("RREF", 413);
    qToLittleEndian(rate, bytes.data() + 5);
    qToLittleEndian(id, bytes.data() + 9);
    return bytes.replace(13, name.size(), name);
}

QByteArray dref(float value, const QByteArray &name)
{
    QByteArray bytes = packet("DREF", 509);
    qToLittleEndian(value, bytes.data() + 5);
    return bytes.replace(9, name.size(), name);
}

QByteArray cmnd(const QByteArray &name)
{
    return QByteArray("CMND\0", 5) + name + '\0';
}
} // namespace

class XPlaneUdpTest : public QObject
{
    Q_OBJECT

    ManualClock m_clock;
    std::unique_ptr<PracticeNetwork> m_network;
    std::unique_ptr<QUdpSocket> m_client;
    QHash<int, float> m_values;
    int m_records = 0;

    XPlaneStandIn &xplane() { return m_network->xplane(); }
    void send(const QByteArray &bytes) { m_client->writeDatagram(bytes, QHostAddress::LocalHost, xplane().udpPort()); }
    void subscribe(int rate, int id, const QByteArray &name)
    {
        QSignalSpy subscribed(&xplane(), &XPlaneStandIn::subscribed);
        send(rref(rate, id, name));
        TRY_COMPARE(subscribed.size(), 1);
    }

private slots:
    void init()
    {
        m_values.clear();
        m_records = 0;
        m_network = std::make_unique<PracticeNetwork>(PracticeSettings::ephemeral(), m_clock);
        QVERIFY2(m_network->start(), qPrintable(m_network->errorString()));
        m_client = std::make_unique<QUdpSocket>();
        QVERIFY(m_client->bind(QHostAddress::LocalHost, 0));
        connect(m_client.get(), &QUdpSocket::readyRead, this, [this] {
            while (m_client->hasPendingDatagrams()) {
                const QByteArray bytes = m_client->receiveDatagram().data();
                for (qsizetype at = 5; at + 8 <= bytes.size(); at += 8, ++m_records)
                    m_values[qFromLittleEndian<int>(bytes.constData() + at)] =
                        qFromLittleEndian<float>(bytes.constData() + at + 4);
            }
        });
    }

    void sendsWhatIsSubscribed()
    {
        xplane().setFlightTime(xplane().flight().startOf(QStringLiteral("downwind")) + 10);
        for (int i = 0; i < 53; ++i)
            subscribe(1, i, QByteArray(datarefs()[static_cast<std::size_t>(i)].name.latin1()));
        TRY_COMPARE(m_values.size(), 53);
        QVERIFY(std::abs(m_values.value(18) - 40.07F) < 0.2F);
        QVERIFY(std::abs(m_values.value(20) - 492.0F) < 3);
        QCOMPARE(m_values.value(45), 0.0F); // gear up
        QCOMPARE(xplane().subscriptionCount(), 53);
    }

    void stopsAtRateZero()
    {
        subscribe(5, 3, "sim/flightmodel/position/latitude");
        TRY_COMPARE(m_records, 1);
        m_clock.advance(200);
        TRY_COMPARE(m_records, 2);
        subscribe(0, 3, "sim/flightmodel/position/latitude");
        QCOMPARE(xplane().subscriptionCount(), 0);
    }

    void obeysWrites_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<float>("value");
        QTest::newRow("COM1") << QByteArray("sim/cockpit2/radios/actuators/com1_frequency_hz_833") << 121'700.0F;
        QTest::newRow("COM2") << QByteArray("sim/cockpit2/radios/actuators/com2_frequency_hz_833") << 118'275.0F;
        QTest::newRow("code") << QByteArray("sim/cockpit/radios/transponder_code") << 7000.0F;
        QTest::newRow("mode") << QByteArray("sim/cockpit/radios/transponder_mode") << 3.0F;
        QTest::newRow("taxi light") << QByteArray("sim/cockpit2/switches/taxi_light_on") << 1.0F;
    }

    void obeysWrites()
    {
        QFETCH(QByteArray, name);
        QFETCH(float, value);
        QSignalSpy written(&xplane(), &XPlaneStandIn::written);
        send(dref(value, name));
        TRY_COMPARE(written.size(), 1);
        QCOMPARE(xplane().value(QString::fromLatin1(name)), value);
        subscribe(1, 8, name);
        TRY_COMPARE(m_values.value(8), value);
    }

    void obeysCommands()
    {
        const QString mode = QStringLiteral("sim/cockpit/radios/transponder_mode");
        const QString ident = QStringLiteral("sim/cockpit/radios/transponder_id");
        QSignalSpy commanded(&xplane(), &XPlaneStandIn::commanded);
        send(cmnd("sim/transponder/transponder_alt"));
        TRY_COMPARE(xplane().value(mode), 3.0F);
        send(cmnd("sim/transponder/transponder_standby"));
        TRY_COMPARE(xplane().value(mode), 1.0F);
        send(cmnd("sim/transponder/transponder_ident"));
        TRY_COMPARE(xplane().value(ident), 1.0F);
        m_clock.advance(17'999);
        xplane().tick();
        QCOMPARE(xplane().value(ident), 1.0F);
        m_clock.advance(1);
        xplane().tick();
        QCOMPARE(xplane().value(ident), 0.0F);
        QCOMPARE(commanded.size(), 3);
    }

    void standsStillWhilePaused()
    {
        m_clock.advance(5000);
        QCOMPARE(xplane().flightTime(), 5.0);
        xplane().setPaused(true);
        m_clock.advance(5000);
        QCOMPARE(xplane().flightTime(), 5.0);
        QCOMPARE(xplane().value(QStringLiteral("sim/time/paused")), 1.0F);
        send(cmnd("sim/operation/pause_toggle"));
        TRY_VERIFY(!xplane().isPaused());
        m_clock.advance(1000);
        QCOMPARE(xplane().flightTime(), 6.0);
    }

    void tellsThePhases()
    {
        xplane().tick();
        QSignalSpy phases(&xplane(), &XPlaneStandIn::phaseChanged);
        m_clock.advance(10'000);
        xplane().tick();
        QCOMPARE(phases.size(), 1);
        QCOMPARE(phases.at(0).at(0).toString(), QStringLiteral("engine start"));
    }

    void aFrozenSimulatorIsSilent()
    {
        xplane().setFrozen(true);
        subscribe(5, 3, "sim/flightmodel/position/latitude");
        m_clock.advance(1000);
        xplane().tick();
        xplane().setFrozen(false);
        TRY_COMPARE(m_records, 1);
    }

    void refusesTheRest_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("one byte") << QByteArray("R");
        QTest::newRow("head alone") << QByteArray("RREF\0", 5);
        QTest::newRow("short request") << rref(1, 1, "sim/flightmodel/position/latitude").chopped(1);
        QTest::newRow("long request") << rref(1, 1, "sim/flightmodel/position/latitude") + 'x';
        QTest::newRow("unknown dataref") << rref(1, 1, "sim/nothing");
        QTest::newRow("name without end") << rref(1, 1, QByteArray(400, 'x'));
        QTest::newRow("short write") << dref(1, "sim/cockpit/radios/transponder_code").chopped(1);
        QTest::newRow("unknown write") << dref(1, "sim/nothing");
        QTest::newRow("unknown command") << cmnd("sim/nothing");
        QTest::newRow("endless command") << cmnd(QByteArray(60'000, 'x'));
        QTest::newRow("reply") << QByteArray("RREF,\0\0\0\0\0\0\0\0", 13);
        QTest::newRow("control characters") << cmnd("\x1b[2J");
    }

    void refusesTheRest()
    {
        QFETCH(QByteArray, bytes);
        QSignalSpy refused(&xplane(), &XPlaneStandIn::refused);
        send(bytes);
        TRY_COMPARE(refused.size(), 1);
        QVERIFY(!refused.at(0).at(1).toString().contains(QLatin1Char('\x1b')));
        QCOMPARE(xplane().subscriptionCount(), 0);
    }

    void setValueKnowsItsDatarefs()
    {
        QVERIFY(!xplane().setValue(QStringLiteral("sim/nothing"), 1));
        QCOMPARE(xplane().value(QStringLiteral("sim/nothing")), 0.0F);
    }
};

TARVO_TEST(XPlaneUdpTest)
#include "XPlaneUdpTest.moc"
