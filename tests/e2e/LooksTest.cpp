#include "e2e/Stage.h"
#include "e2e/TrafficLines.h"
#include "support/TestRegistry.h"

using namespace tarvo;
using namespace tarvo::test;

namespace {
const QVariant nil;
}

/// What the other aircraft look like: lights, gear, engines, livery.
class LooksTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<Stage> m_shared; ///< for the rows of a table

private slots:
    void initTestCase()
    {
        m_shared = std::make_unique<Stage>();
        QVERIFY(m_shared->start({cca}));
    }

    void cleanupTestCase() { m_shared.reset(); }

    void configurationsMerge()
    {
        Stage stage;
        QVERIFY(stage.start({cca}));
        QVERIFY(stage.introduce(cca, 0));

        // Parts of an unknown whole: only the session's table, which keeps the last message, tells of it.
        QVERIFY(stage.hear({configuration(cca, u"\"gear_down\":true"_qs)}));
        QCOMPARE(stage.takeMessages(), told({acconf(cca, {nil, nil, nil, nil, nil, true, nil, nil, nil, nil, nil})}));
        QVERIFY(stage.hear({fullConfiguration(cca)}));
        QCOMPARE(stage.takeMessages(), told({acconfFull(cca), acconfFull(cca)}));

        // One light tells of all five; the rest of the merged record stays.
        QVERIFY(stage.hear({configuration(cca, u"\"lights\":{\"nav_on\":false}"_qs)}));
        QCOMPARE(stage.takeMessages(),
                 told({acconf(cca, {nil, nil, nil, nil, nil, nil, nil, nil, false, nil, nil}),
                       acconf(cca, {true, true, false, true, 0.25F, true, nil, nil, false, nil, nil})}));
        // An engine stands for the whole block, too.
        QVERIFY(stage.hear({configuration(cca, u"\"engines\":{\"1\":{\"is_reversing\":true}}"_qs)}));
        QCOMPARE(stage.takeMessages(),
                 told({acconf(cca, {nil, false, true, nil, nil, nil, nil, nil, nil, nil, nil}),
                       acconf(cca, {true, false, true, true, 0.25F, true, nil, nil, false, nil, nil})}));
        QVERIFY(stage.hear({configuration(cca, u"\"flaps_pct\":33,\"on_ground\":false,\"spoilers_out\":true"_qs)}));
        QCOMPARE(stage.takeMessages(),
                 told({acconf(cca, {nil, nil, nil, false, 0.33F, nil, nil, nil, nil, nil, nil}),
                       acconf(cca, {true, false, true, false, 0.33F, true, nil, nil, false, nil, nil})}));
        QCOMPARE(stage.takeLines(), QStringList());
    }

    void anUnreadableConfigurationIsPassedOnAndChangesNothing()
    {
        Stage stage;
        QVERIFY(stage.start({cca}));
        QVERIFY(stage.introduce(cca, 0));
        stage.takeSignals();
        QVERIFY(stage.hear({u"$CQCCA123:AB1:ACC:{\"config\":{"_qs, u"$CQCCA123:AB1:ACC"_qs}));
        QCOMPARE(stage.takeSignals(),
                 (QStringList{u"configuration CCA123 {\"config\":{"_qs, u"configuration CCA123 "_qs}));
        QCOMPARE(stage.takeMessages(), QStringList());
    }

    void aFullConfigurationIsGivenOnRequest()
    {
        Stage stage;
        QVERIFY(stage.start({cca}));
        QVERIFY(stage.hear({u"$CQCCA123:AB1:ACC:{\"request\":\"full\"}"_qs}));
        const QString own = u"{\"config\":{\"is_full_data\":true,\"lights\":{\"strobe_on\":false,\"landing_on\":false,"
                            u"\"taxi_on\":false,\"beacon_on\":false,\"nav_on\":true},\"engines\":{\"1\":{\"on\":false,"
                            u"\"is_reversing\":false},\"2\":{\"on\":false,\"is_reversing\":false}},\"gear_down\":true,"
                            u"\"flaps_pct\":0,\"spoilers_out\":false,\"on_ground\":true}}"_qs;
        QCOMPARE(stage.takeLines(), QStringList{u"$CQAB1:CCA123:ACC:"_qs + own});
    }

    void liveries_data()
    {
        QTest::addColumn<QStringList>("answers");
        QTest::addColumn<QString>("livery");
        QTest::addColumn<QString>("hint");
        QTest::newRow("a livery") << QStringList{u"EQUIPMENT=B738:LIVERY=air china"_qs} << u"AIR CHINA"_qs << QString();
        QTest::newRow("SWIFT_ names a model")
            << QStringList{u"EQUIPMENT=B738:LIVERY=swift_b738cca"_qs} << u"SWIFT_B738CCA"_qs << u"SWIFT_B738CCA"_qs;
        QTest::newRow("a CSL field names it better")
            << QStringList{u"EQUIPMENT=B738:LIVERY=swift_b738cca:CSL=Bluebell 738"_qs} << u"SWIFT_B738CCA"_qs
            << u"Bluebell 738"_qs;
        QTest::newRow("m_csl") << QStringList{u"EQUIPMENT=B738:m_csl=Bluebell 738"_qs} << QString()
                               << u"Bluebell 738"_qs;
        QTest::newRow("a hint outlives another SWIFT_")
            << QStringList{u"EQUIPMENT=B738:LIVERY=swift_1"_qs, u"EQUIPMENT=B738:LIVERY=swift_2"_qs} << u"SWIFT_2"_qs
            << u"SWIFT_1"_qs;
        QTest::newRow("an empty livery takes nothing back")
            << QStringList{u"EQUIPMENT=B738:LIVERY=swift_1"_qs, u"EQUIPMENT=B738"_qs} << u"SWIFT_1"_qs << u"SWIFT_1"_qs;
        QTest::newRow("SWIFT_ must stand in front")
            << QStringList{u"EQUIPMENT=B738:LIVERY=my swift_1"_qs} << u"MY SWIFT_1"_qs << QString();
    }

    void liveries()
    {
        QFETCH(QStringList, answers);
        QFETCH(QString, livery);
        QFETCH(QString, hint);
        QVERIFY(m_shared->hear({deletion(cca)}));
        m_shared->takeMessages();
        Stage &stage = *m_shared;
        QVERIFY(stage.hear({slowPosition(cca, 0)}));
        for (const QString &answer : answers)
            QVERIFY(stage.hear({planeInfo(cca, answer)}));
        for (const model::RemoteAircraft &record : {stage.inNetworkTable(cca), stage.inTrafficList(cca)}) {
            QCOMPARE(record.livery, livery);
            QCOMPARE(record.remoteModelHint, hint);
            QCOMPARE(record.typeCode, u"B738"_qs);
        }
        QCOMPARE(stage.takeMessages(), told({add(cca)})); // neither travels to the plugin
    }
};

TARVO_TEST(LooksTest)
#include "LooksTest.moc"
