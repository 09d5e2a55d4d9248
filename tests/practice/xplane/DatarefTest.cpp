#include "practice/flight/Flight.h"
#include "practice/xplane/Datarefs.h"
#include "practice/xplane/RrefSubscriptions.h"
#include "support/TestRegistry.h"

#include <QTest>
#include <QtEndian>

#include <limits>

using namespace tarvo::practice;

namespace {
const QHostAddress here(QHostAddress::LocalHost);

float byNumber(int dataref)
{
    return static_cast<float>(dataref);
}

int records(const QList<RrefSubscriptions::Datagram> &datagrams)
{
    int count = 0;
    for (const RrefSubscriptions::Datagram &datagram : datagrams)
        count += static_cast<int>((datagram.bytes.size() - 5) / 8);
    return count;
}
} // namespace

class DatarefTest : public QObject
{
    Q_OBJECT

private slots:
    void knowsFiftyThree()
    {
        QCOMPARE(datarefs().size(), 53U);
        QCOMPARE(datarefIndex(u"sim/cockpit2/switches/avionics_power_on"), 0);
        QCOMPARE(datarefIndex(u"sim/flightmodel2/gear/tire_steer_actual_deg[0]"), 49);
        QCOMPARE(datarefIndex(u"sim/version/xplane_internal_version"), 52);
        QCOMPARE(datarefIndex(u"sim/nothing"), -1);
        QCOMPARE(datarefIndex(u""), -1);
    }

    void readsTheAeroplane_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<float>("value");
        const auto row = [](const char16_t *name, float value) {
            const QString text = QString::fromUtf16(name);
            QTest::newRow(text.toLatin1().constData()) << text << value;
        };
        row(u"sim/cockpit2/radios/actuators/audio_com_selection", 6);
        row(u"sim/cockpit2/radios/actuators/com1_frequency_hz_833", 118500);
        row(u"sim/cockpit/radios/transponder_mode", 3);
        row(u"sim/cockpit/radios/transponder_code", 2000);
        row(u"sim/flightmodel/position/latitude", 40);
        row(u"sim/flightmodel/position/elevation", 100);
        row(u"sim/flightmodel/position/y_agl", 65);
        row(u"sim/flightmodel/position/groundspeed", 5);
        row(u"sim/flightmodel/position/local_vx", 3);
        row(u"sim/flightmodel/position/local_vy", 2);
        row(u"sim/flightmodel/position/local_vz", -4); // to the south
        row(u"sim/flightmodel/position/Qrad", 0.1F);
        row(u"sim/flightmodel/position/Rrad", 0.2F);
        row(u"sim/flightmodel/position/Prad", 0.3F);
        row(u"sim/aircraft/engine/acf_num_engines", 2);
        row(u"sim/flightmodel/engine/ENGN_running[0]", 1);
        row(u"sim/flightmodel/engine/ENGN_running[1]", 0);
        row(u"sim/flightmodel/engine/ENGN_propmode[1]", 3);
        row(u"sim/flightmodel/failures/onground_any", 0);
        row(u"sim/cockpit/switches/gear_handle_status", 0);
        row(u"sim/time/paused", 0);
    }

    void readsTheAeroplane()
    {
        QFETCH(QString, name);
        QFETCH(float, value);
        AircraftState state;
        state.latitude = 40;
        state.altitudeM = 100;
        state.heightM = 65;
        state.eastVelocity = 3;
        state.upVelocity = 2;
        state.northVelocity = 4;
        state.pitchRate = 0.1;
        state.yawRate = 0.2;
        state.rollRate = 0.3;
        state.engine1 = state.reverse = state.modeC = true;
        state.onGround = state.gearDown = false;
        const int index = datarefIndex(name);
        QVERIFY(index >= 0);
        QCOMPARE(datarefs()[static_cast<std::size_t>(index)].read(state), value);
    }

    void aWriteStandsUntilThePilotMoves()
    {
        const int mode = datarefIndex(u"sim/cockpit/radios/transponder_mode");
        AircraftState state;
        DatarefWrites writes;
        writes.write(mode, 3, state);
        writes.settle(state);
        QCOMPARE(writes.value(mode, state), 3.0F);
        state.heading = 90; // something else
        writes.settle(state);
        QCOMPARE(writes.value(mode, state), 3.0F);
        state.modeC = true;
        writes.settle(state);
        state.modeC = false;
        writes.settle(state);
        QCOMPARE(writes.value(mode, state), 1.0F);
    }

    void noNumberIsNoWrite()
    {
        DatarefWrites writes;
        writes.write(4, std::numeric_limits<float>::quiet_NaN(), {});
        writes.write(4, std::numeric_limits<float>::infinity(), {});
        QCOMPARE(writes.value(4, {}), 118'500.0F);
    }

    void ratesAreHonoured_data()
    {
        QTest::addColumn<int>("rate");
        QTest::addColumn<int>("expected");
        QTest::newRow("once a second") << 1 << 10;
        QTest::newRow("twice") << 2 << 20;
        QTest::newRow("five times") << 5 << 50;
        QTest::newRow("fifteen times") << 15 << 150;
        QTest::newRow("too often") << 1'000'000 << 990;
        QTest::newRow("never") << 0 << 0;
        QTest::newRow("less than never") << -5 << 0;
    }

    void ratesAreHonoured()
    {
        QFETCH(int, rate);
        QFETCH(int, expected);
        RrefSubscriptions subscriptions;
        QVERIFY(subscriptions.subscribe(here, 5000, 7, 3, rate, 0));
        int sent = 0;
        for (qint64 now = 0; now < 10'000; now += 10)
            sent += records(subscriptions.due(now, byNumber));
        QVERIFY2(std::abs(sent - expected) <= 1, qPrintable(QString::number(sent)));
    }

    void recordsShareADatagram()
    {
        RrefSubscriptions subscriptions;
        for (int i = 0; i < 53; ++i)
            subscriptions.subscribe(here, 5000, i, i, 1, 0);
        const QList<RrefSubscriptions::Datagram> datagrams = subscriptions.due(0, byNumber);
        QCOMPARE(datagrams.size(), 1);
        const QByteArray &bytes = datagrams.at(0).bytes;
        QCOMPARE(bytes.size(), 5 + 53 * 8);
        QCOMPARE(bytes.left(13), QByteArray("RREF,\0\0\0\0\0\0\0\0", 13));
        QCOMPARE(qFromLittleEndian<quint32>(bytes.constData() + 5 + 52 * 8), 52U);
        QCOMPARE(qFromLittleEndian<float>(bytes.constData() + 9 + 52 * 8), 52.0F);
        QVERIFY(subscriptions.due(999, byNumber).isEmpty());
        QCOMPARE(records(subscriptions.due(1000, byNumber)), 53);
    }

    void datagramsStaySmall()
    {
        RrefSubscriptions subscriptions;
        for (int i = 0; i < RrefSubscriptions::maxPerClient; ++i)
            QVERIFY(subscriptions.subscribe(here, 5000, i, 0, 1, 0));
        QVERIFY(!subscriptions.subscribe(here, 5000, 9999, 0, 1, 0));
        QVERIFY(subscriptions.subscribe(here, 5000, 0, 1, 1, 0)); // a change of an old one is no new one
        const QList<RrefSubscriptions::Datagram> datagrams = subscriptions.due(0, byNumber);
        QCOMPARE(datagrams.size(), 3);
        QCOMPARE(records(datagrams), RrefSubscriptions::maxPerClient);
        for (const RrefSubscriptions::Datagram &datagram : datagrams)
            QVERIFY(datagram.bytes.size() <= RrefSubscriptions::maxDatagram);
    }

    void whoHasBeenSilentLongestGivesWay()
    {
        constexpr int most = RrefSubscriptions::maxClients;
        RrefSubscriptions subscriptions;
        for (int i = 0; i < most; ++i)
            subscriptions.subscribe(here, static_cast<quint16>(5000 + i), 1, 0, 1, i);
        subscriptions.subscribe(here, 5000, 1, 0, 1, most); // the first says it again
        subscriptions.subscribe(here, 5000 + most, 1, 0, 1, most);
        QCOMPARE(subscriptions.count(), most);
        for (const RrefSubscriptions::Datagram &datagram : subscriptions.due(1000, byNumber))
            QVERIFY(datagram.port != 5001);
    }

    void aStandstillIsNotMadeUpFor()
    {
        RrefSubscriptions subscriptions;
        subscriptions.subscribe(here, 5000, 1, 0, 10, 0);
        QCOMPARE(records(subscriptions.due(60'000, byNumber)), 1);
        QVERIFY(subscriptions.due(60'050, byNumber).isEmpty());
    }
};

TARVO_TEST(DatarefTest)
#include "DatarefTest.moc"
