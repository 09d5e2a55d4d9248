#include "SessionBench.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::test;
using namespace tarvo::simulator::msfs;

/// What the simulator complains of.
class SessionExceptionTest : public QObject
{
    Q_OBJECT

private slots:
    void everyOneIsTold_data()
    {
        columns<quint32, QString, QString, QString>("code", "critical", "warning", "error");
        const auto add = [](quint32 code, const char *critical, const char *warning, const char *error) {
            QTest::addRow("%u", code) << code << line(critical) << line(warning) << line(error);
        };
        add(1, "SimConnect exception: 1 (ERROR), SendID=12, Index=3", "", "SimConnect exception code: 1 (ERROR)");
        add(3, "SimConnect exception: 3 (UNRECOGNIZED_ID), SendID=12, Index=3",
            "Ignoring non-fatal SimConnect UNRECOGNIZED_ID exception (SendID=12, Index=3)", "");
        add(7, "SimConnect exception: 7 (NAME_UNRECOGNIZED), SendID=12, Index=3",
            "Ignoring non-fatal SimConnect NAME_UNRECOGNIZED exception (SendID=12, Index=3)", "");
        add(20, "SimConnect exception: 20 (DATA_ERROR), SendID=12, Index=3",
            "Ignoring non-fatal SimConnect DATA_ERROR exception (SendID=12, Index=3)", "");
        add(22, "SimConnect exception: 22 (CREATE_OBJECT_FAILED), SendID=12, Index=3",
            "Ignoring non-fatal CREATE_OBJECT_FAILED to keep SimConnect session alive", "");
        add(28, "SimConnect exception: 28 (DEFINITION_ERROR), SendID=12, Index=3", "",
            "SimConnect exception code: 28 (DEFINITION_ERROR)");
        add(30, "SimConnect exception: 30 (DATUM_ID), SendID=12, Index=3", "",
            "SimConnect exception code: 30 (DATUM_ID)");
        add(13, "SimConnect exception: 13 (UNKNOWN), SendID=12, Index=3", "",
            "SimConnect exception code: 13 (UNKNOWN)");
        add(99, "SimConnect exception: 99 (UNKNOWN), SendID=12, Index=3", "",
            "SimConnect exception code: 99 (UNKNOWN)");
    }

    void everyOneIsTold()
    {
        QFETCH(quint32, code);
        QFETCH(QString, warning);
        QFETCH(QString, error);
        OpenBench bench;
        const QSignalSpy failed(&bench.session, &SimConnectSession::remoteAircraftCreateFailed);
        bench.send(message::exception(code, 12, 3));
        QTEST(bench.log.texts(QtCriticalMsg).join(u'|'), "critical");
        QCOMPARE(bench.log.texts(QtWarningMsg).join(u'|'), warning);
        QCOMPARE(bench.errors.isEmpty() ? QString() : bench.error(), error);
        QCOMPARE(failed.size(), code == 22 ? 1 : 0);
        QVERIFY(bench.session.isOpen());
    }

    void someDisableTraffic_data()
    {
        columns<quint32, bool, QString>("code", "defined", "warning");
        QTest::newRow("7") << 7U << true
                           << line("Disabling traffic mapping after SimConnect exception 7 (NAME_UNRECOGNIZED)");
        QTest::newRow("28") << 28U << true
                            << line("Disabling traffic mapping after SimConnect exception 28 (DEFINITION_ERROR)");
        QTest::newRow("30") << 30U << true
                            << line("Disabling traffic mapping after SimConnect exception 30 (DATUM_ID)");
        QTest::newRow("28, traffic only wanted")
            << 28U << false << line("Disabling traffic mapping after SimConnect exception 28 (DEFINITION_ERROR)");
    }

    void someDisableTraffic()
    {
        QFETCH(quint32, code);
        QFETCH(bool, defined);
        QFETCH(QString, warning);
        SessionBench bench;
        bench.session.setTrafficEnabled(true);
        if (defined)
            bench.openAndRegister();
        else
            bench.open();
        QCOMPARE(bench.timer("traffic")->isActive(), defined);
        const QSignalSpy snapshots(&bench.session, &SimConnectSession::trafficSnapshotReceived);
        bench.send(message::exception(code, 1, 1));
        QCOMPARE(bench.log.texts(QtWarningMsg), QStringList(warning));
        QCOMPARE(snapshots, (QList<QVariantList>{{QVariantList()}}));
        QVERIFY(!bench.timer("traffic")->isActive());
        QCOMPARE(bench.errors.size(), 0);
        bench.send(message::exception(28, 1, 1));
        QCOMPARE(bench.error(), line("SimConnect exception code: 28 (DEFINITION_ERROR)"));
    }

    void wantedTrafficThatIsNotInUseStays()
    {
        SessionBench bench;
        bench.session.setTrafficEnabled(true);
        bench.open();
        bench.send(message::exception(7, 1, 1));
        QCOMPARE(bench.log.texts(QtWarningMsg),
                 QStringList(line("Ignoring non-fatal SimConnect NAME_UNRECOGNIZED exception (SendID=1, Index=1)")));
        bench.session.registerDefinitions();
        QCOMPARE(bench.standIn.calls().last(), trafficCalls().last());
    }
};

TARVO_TEST(SessionExceptionTest)
#include "SessionExceptionTest.moc"
