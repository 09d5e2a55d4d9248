#include "SessionBench.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <limits>

using namespace tarvo::test;
using namespace tarvo::simulator::msfs;

namespace {

QByteArray contactData(const char *atcId, double latitude, double longitude)
{
    return message::text(atcId, 64) + message::float64(latitude) + message::float64(longitude);
}

QByteArray contact(quint32 object, quint32 entry, quint32 outOf, const QByteArray &data)
{
    return message::objectDataByType(
        {.request = 40001, .object = object, .define = 40000, .entry = entry, .outOf = outOf, .count = 3}, data);
}

QVariantMap contactRow(quint32 object, const char *label, const char *atcId, double latitude, double longitude)
{
    return {{line("objectId"), object},   {line("label"), line(label)},    {line("atcId"), line(atcId)},
            {line("latitude"), latitude}, {line("longitude"), longitude},  {line("altitudeFeet"), 0.0},
            {line("headingTrue"), 0.0},   {line("groundSpeedKnots"), 0.0}, {line("onGround"), false},
            {line("beaconOn"), false},    {line("navOn"), false},          {line("strobeOn"), false}};
}

struct TrafficBench : SessionBench
{
    QSignalSpy snapshots{&session, &SimConnectSession::trafficSnapshotReceived};

    TrafficBench()
    {
        session.setTrafficEnabled(true);
        openAndRegister();
    }
    QVariantList last() const { return snapshots.last().first().toList(); }
};

} // namespace

/// Every aircraft around the own one.
class SessionTrafficTest : public QObject
{
    Q_OBJECT

private slots:
    void isAskedForEverySecond()
    {
        TrafficBench bench;
        QVERIFY(bench.timer("traffic")->isActive());
        QCOMPARE(bench.timer("traffic")->interval(), 1000);
        bench.tick("traffic");
        QCOMPARE(bench.standIn.calls(), QStringList(trafficCalls().last()));
    }

    void beginsInTheMiddle()
    {
        DefinedBench bench;
        bench.session.setTrafficEnabled(true);
        QCOMPARE(bench.standIn.takeCalls(), trafficCalls());
        QVERIFY(bench.timer("traffic")->isActive());
        bench.session.setTrafficEnabled(true);
        QCOMPARE(bench.standIn.calls(), QStringList(trafficCalls().last()));
    }

    void waitsForTheDefinitions()
    {
        OpenBench bench;
        bench.session.setTrafficEnabled(true);
        QCOMPARE(bench.standIn.calls(), QStringList());
        QVERIFY(!bench.timer("traffic")->isActive());
    }

    void ends()
    {
        TrafficBench bench;
        bench.send(contact(5, 0, 2, contactData("CCA1", 1, 2)));
        bench.session.setTrafficEnabled(false);
        QCOMPARE(bench.snapshots, (QList<QVariantList>{{QVariantList()}}));
        QVERIFY(!bench.timer("traffic")->isActive());
        QCOMPARE(bench.standIn.calls(), QStringList());
        bench.send(contact(6, 1, 2, contactData("CCA2", 3, 4)));
        QCOMPARE(bench.last(), (QVariantList{contactRow(6, "CCA2", "CCA2", 3, 4)}));
    }

    void radius_data()
    {
        QTest::addColumn<quint32>("radius");
        QTest::addColumn<QString>("call");
        QTest::newRow("some") << 12345U << line("RequestDataOnSimObjectType 40001 40000 12345 2");
        QTest::newRow("largest") << 200000U << line("RequestDataOnSimObjectType 40001 40000 200000 2");
        QTest::newRow("too large") << 200001U << line("RequestDataOnSimObjectType 40001 40000 200000 2");
        QTest::newRow("none") << 0U << line("RequestDataOnSimObjectType 40001 40000 0 2");
    }

    void radius()
    {
        QFETCH(quint32, radius);
        TrafficBench bench;
        bench.session.setTrafficRadius(radius);
        bench.tick("traffic");
        QTEST(bench.standIn.calls().join(u'|'), "call");
    }

    void wishAndRadiusOutliveTheSession()
    {
        TrafficBench bench;
        bench.session.setTrafficRadius(100);
        bench.session.close();
        bench.open();
        bench.session.registerDefinitions();
        QStringList expected = trafficCalls();
        expected.last() = line("RequestDataOnSimObjectType 40001 40000 100 2");
        QCOMPARE(bench.standIn.calls().last(expected.size()), expected);
        QVERIFY(bench.timer("traffic")->isActive());
    }

    void rowsAreCollected()
    {
        TrafficBench bench;
        bench.send(contact(5, 0, 2, contactData(" CCA1 ", 40.5, 116.25)));
        QCOMPARE(bench.snapshots.size(), 0);
        bench.send(contact(6, 1, 2, contactData("", -1.5, -2.5)));
        QCOMPARE(bench.snapshots.size(), 1);
        QCOMPARE(bench.last(),
                 (QVariantList{contactRow(5, "CCA1", "CCA1", 40.5, 116.25), contactRow(6, "OBJ-6", "", -1.5, -2.5)}));
    }

    void rowsThatAreLeftOutStillCountForTheEnd_data()
    {
        QTest::addColumn<QByteArray>("second");
        QTest::newRow("a byte short") << contact(6, 1, 2, contactData("CCA2", 1, 2).chopped(1));
        QTest::newRow("no data") << contact(6, 1, 2, {});
        QTest::newRow("the own aircraft") << contact(0, 1, 2, contactData("OWN", 1, 2));
        QTest::newRow("nowhere") << contact(6, 1, 2, contactData("CCA2", std::numeric_limits<double>::quiet_NaN(), 2));
    }

    void rowsThatAreLeftOutStillCountForTheEnd()
    {
        QFETCH(QByteArray, second);
        TrafficBench bench;
        bench.send(contact(5, 0, 2, contactData("CCA1", 1, 2)));
        bench.send(second);
        QCOMPARE(bench.snapshots.size(), 1);
        QCOMPARE(bench.last(), (QVariantList{contactRow(5, "CCA1", "CCA1", 1, 2)}));
    }

    void firstRowBeginsAnew()
    {
        TrafficBench bench;
        bench.send(contact(5, 0, 3, contactData("CCA1", 1, 2)));
        bench.send(contact(6, 0, 2, contactData("CCA2", 3, 4)));
        bench.send(contact(7, 1, 2, contactData("CCA3", 5, 6)));
        QCOMPARE(bench.last(),
                 (QVariantList{contactRow(6, "CCA2", "CCA2", 3, 4), contactRow(7, "CCA3", "CCA3", 5, 6)}));
    }

    void snapshotWithoutAircraft()
    {
        TrafficBench bench;
        bench.send(contact(0, 0, 0, {}));
        QCOMPARE(bench.snapshots, (QList<QVariantList>{{QVariantList()}}));
    }

    void entryBeyondTheLastEnds()
    {
        TrafficBench bench;
        bench.send(contact(5, 0xFFFFFFFF, 0xFFFFFFFF, contactData("CCA1", 1, 2)));
        QCOMPARE(bench.snapshots.size(), 1);
    }

    void otherRequestsAreNotTaken()
    {
        TrafficBench bench;
        bench.send(message::objectDataByType({.request = 40002, .object = 5}, contactData("CCA1", 1, 2)));
        QCOMPARE(bench.snapshots.size(), 0);
    }

    void refusedField_data()
    {
        QTest::addColumn<int>("after");
        QTest::addColumn<QString>("field");
        QTest::newRow("first") << 0 << line("ATC ID");
        QTest::newRow("second") << 1 << line("PLANE LATITUDE");
        QTest::newRow("third") << 2 << line("PLANE LONGITUDE");
    }

    void refusedField()
    {
        QFETCH(int, after);
        QFETCH(QString, field);
        DefinedBench bench;
        bench.standIn.failNext(line("AddToDataDefinition"), 1, static_cast<qint32>(0x80004005), after);
        bench.session.setTrafficEnabled(true);
        QCOMPARE(bench.standIn.takeCalls(), trafficCalls().first(after + 1) + lines("ClearDataDefinition 40000"));
        const QString text = QStringLiteral("Failed to register traffic field: %1").arg(field);
        QCOMPARE(bench.log.texts(QtCriticalMsg), QStringList(text + line(" (HRESULT: 0x80004005)")));
        QCOMPARE(bench.error(), text);
        QVERIFY(!bench.timer("traffic")->isActive());
        bench.session.setTrafficEnabled(true); // nothing of the first try is left
        QCOMPARE(bench.standIn.calls(), trafficCalls());
    }

    void refusedRequestIsToldEachTime()
    {
        TrafficBench bench;
        bench.standIn.failAlways(line("RequestDataOnSimObjectType"));
        bench.tick("traffic");
        QCOMPARE(bench.log.texts(QtCriticalMsg),
                 QStringList(line("Failed to request traffic snapshot (HRESULT: 0x80004005)")));
        QCOMPARE(bench.error(), line("Failed to request traffic snapshot"));
        bench.tick("traffic");
        QCOMPARE(bench.errors.size(), 2);
        QVERIFY(bench.timer("traffic")->isActive());
    }

    void refusedFirstRequestBeginsAllTheSame()
    {
        DefinedBench bench;
        bench.standIn.failNext(line("RequestDataOnSimObjectType"));
        bench.session.setTrafficEnabled(true);
        QCOMPARE(bench.errors.size(), 1);
        QVERIFY(bench.timer("traffic")->isActive());
    }

    void whoHearsOfItMayClose()
    {
        DefinedBench bench;
        connect(&bench.session, &SimConnectSession::errorOccurred, &bench.session, &SimConnectSession::close);
        bench.standIn.failNext(line("RequestDataOnSimObjectType"));
        bench.session.setTrafficEnabled(true);
        QVERIFY(!bench.session.isOpen());
        QVERIFY(!bench.timer("traffic")->isActive());
    }
};

TARVO_TEST(SessionTrafficTest)
#include "SessionTrafficTest.moc"
