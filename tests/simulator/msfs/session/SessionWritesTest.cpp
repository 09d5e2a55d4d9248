#include "SessionBench.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::test;
using namespace tarvo::simulator::msfs;

namespace {
constexpr auto keyOfNoRow = static_cast<SimKey>(59);
}

/// Variables that the client writes.
class SessionWritesTest : public QObject
{
    Q_OBJECT

private slots:
    void goThroughADefinitionOfTheirOwn_data()
    {
        columns<SimKey, QVariant, QStringList>("key", "value", "calls");
        QTest::newRow("code") << SimKey::TransponderCode << QVariant(7000)
                              << lines("AddToDataDefinition 1002 \"TRANSPONDER CODE:1\" \"Bco16\" 1 0 4294967295\n"
                                       "SetDataOnSimObject 1002 0 0 1 4 00700000\n"
                                       "ClearDataDefinition 1002");
        QTest::newRow("mode") << SimKey::SquawkingModeC << QVariant(4)
                              << lines("AddToDataDefinition 1002 \"TRANSPONDER STATE:1\" \"enum\" 1 0 4294967295\n"
                                       "SetDataOnSimObject 1002 0 0 1 4 04000000\n"
                                       "ClearDataDefinition 1002");
        QTest::newRow("number") << SimKey::Latitude << QVariant(1.0)
                                << lines("AddToDataDefinition 1000 \"PLANE LATITUDE\" \"degrees\" 4 0 4294967295\n"
                                         "SetDataOnSimObject 1000 0 0 1 8 000000000000f03f\n"
                                         "ClearDataDefinition 1000");
        QTest::newRow("bool") << SimKey::OnGround << QVariant(true)
                              << lines("AddToDataDefinition 1003 \"SIM ON GROUND\" \"bool\" 1 0 4294967295\n"
                                       "SetDataOnSimObject 1003 0 0 1 4 01000000\n"
                                       "ClearDataDefinition 1003");
    }

    void goThroughADefinitionOfTheirOwn()
    {
        QFETCH(SimKey, key);
        QFETCH(QVariant, value);
        QFETCH(QStringList, calls);
        OpenBench bench;
        bench.session.setDataValue(key, value);
        QCOMPARE(bench.standIn.takeCalls(), calls);
        bench.session.setObjectDataValue(258, key, value);
        calls[1].replace(QRegularExpression(line("^(SetDataOnSimObject \\d+) 0")), line("\\1 258"));
        QCOMPARE(bench.standIn.calls(), calls);
        QCOMPARE(bench.log.texts(QtWarningMsg), QStringList());
    }

    void rowsThatAreNeverReadAreForOtherAircraft()
    {
        OpenBench bench;
        bench.session.setDataValue(SimKey::GearHandlePosition, true);
        QCOMPARE(bench.standIn.calls(), QStringList());
        QCOMPARE(bench.log.texts(QtWarningMsg),
                 QStringList(line("Cannot set data value: no active binding for key 18")));
        bench.session.setObjectDataValue(5, SimKey::GearHandlePosition, true);
        QCOMPARE(bench.standIn.takeCalls(),
                 lines("AddToDataDefinition 1001 \"GEAR HANDLE POSITION\" \"bool\" 1 0 4294967295\n"
                       "SetDataOnSimObject 1001 5 0 1 4 01000000\n"
                       "ClearDataDefinition 1001"));
        bench.session.setObjectDataValue(5, SimKey::AircraftTitle, line("AB"));
        QCOMPARE(bench.standIn.calls().at(1), line("SetDataOnSimObject 1000 5 0 1 256 4142") + QString(508, u'0'));
    }

    void unknownKey()
    {
        OpenBench bench;
        bench.session.setDataValue(keyOfNoRow, 1);
        bench.session.setObjectDataValue(5, keyOfNoRow, 1);
        QCOMPARE(bench.standIn.calls(), QStringList());
        QCOMPARE(bench.log.texts(QtWarningMsg), lines("Cannot set data value: no active binding for key 59\n"
                                                      "Cannot set object data value: no binding for key 59"));
    }

    void refused_data()
    {
        columns<QString, QString, qsizetype>("function", "failure", "calls");
        QTest::newRow("definition") << line("AddToDataDefinition")
                                    << line("Failed to create write definition for LIGHT BEACON (HRESULT: 0x80004005)")
                                    << qsizetype(1);
        QTest::newRow("value") << line("SetDataOnSimObject")
                               << line("Failed to set data value for LIGHT BEACON (HRESULT: 0x80004005)")
                               << qsizetype(3);
        QTest::newRow("clearing is no matter") << line("ClearDataDefinition") << QString() << qsizetype(3);
    }

    void refused()
    {
        QFETCH(QString, function);
        QFETCH(QString, failure);
        QFETCH(qsizetype, calls);
        OpenBench bench;
        bench.standIn.failAlways(function);
        bench.session.setDataValue(SimKey::BeaconOn, true);
        QCOMPARE(bench.standIn.takeCalls().size(), calls);
        bench.session.setObjectDataValue(5, SimKey::BeaconOn, true);
        QCOMPARE(bench.standIn.takeCalls().size(), calls);
        const QStringList both{line("Failed to set data value: ") + failure,
                               line("Failed to set object 5 data value: ") + failure};
        QCOMPARE(bench.log.texts(QtCriticalMsg), failure.isEmpty() ? QStringList() : both);
        QCOMPARE(bench.errors.size(), 0);
        QVERIFY(bench.session.isOpen());
    }
};

TARVO_TEST(SessionWritesTest)
#include "SessionWritesTest.moc"
