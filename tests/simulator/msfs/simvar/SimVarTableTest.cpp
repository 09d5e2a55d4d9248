#include "simulator/msfs/simvar/SimVarTable.h"
#include "support/Columns.h"
#include "support/SourceFolder.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QTest>

using namespace tarvo::simulator::msfs;

namespace {

QStringList goldenRows()
{
    QFile file(tarvo::test::sourceFile(QStringLiteral("tests/simulator/msfs/simvar/golden/simvars.txt")));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    QStringList rows = QString::fromUtf8(file.readAll()).trimmed().split(u'\n');
    rows.removeFirst(); // what the columns are
    return rows;
}

QString asGoldenRow(const SimVarDefinition &definition, MsfsRuntimeProfile profile)
{
    const SimVarBinding binding = simVarBinding(definition, profile);
    const QStringList fields{QString::number(static_cast<int>(binding.key)),
                             QString::number(static_cast<int>(binding.group)),
                             QString::number(static_cast<int>(binding.type)),
                             binding.dataKey,
                             QString::fromLatin1(binding.variable),
                             QString::fromLatin1(binding.unit),
                             QString::number(static_cast<int>(binding.conversion)),
                             definition.active ? QStringLiteral("yes") : QStringLiteral("no")};
    return fields.join(QStringLiteral(" | "));
}

constexpr MsfsRuntimeProfile everyProfile[] = {MsfsRuntimeProfile::Unknown, MsfsRuntimeProfile::Msfs2020,
                                               MsfsRuntimeProfile::Msfs2024};
constexpr auto noKey = static_cast<SimKey>(59);
constexpr auto noCommand = static_cast<CommandKey>(3);

} // namespace

class SimVarTableTest : public QObject
{
    Q_OBJECT

private slots:
    void rowsAreTheGoldenOnes()
    {
        for (const MsfsRuntimeProfile profile : everyProfile) {
            QStringList rows;
            for (const SimVarDefinition &definition : simVarDefinitions())
                rows.append(asGoldenRow(definition, profile));
            QCOMPARE(rows.size(), 59);
            QCOMPARE(rows, goldenRows());
        }
    }

    void dataKeyIsTheKeysName()
    {
        QCOMPARE(simVarBinding(SimKey::Latitude, {})->dataKey, QStringLiteral("latitude"));
        QCOMPARE(simVarBinding(SimKey::SimPaused, {})->dataKey, QStringLiteral("simPaused"));
    }

    void whatIsReadLeavesTwoRowsOut()
    {
        for (const MsfsRuntimeProfile profile : everyProfile) {
            const QList<SimVarBinding> bindings = simVarBindings(profile);
            QCOMPARE(bindings.size(), 57);
            for (const SimVarBinding &binding : bindings)
                QVERIFY(binding.key != SimKey::AircraftTitle && binding.key != SimKey::GearHandlePosition);
        }
    }

    void groupsAreRead_data()
    {
        tarvo::test::columns<UpdateGroup, qsizetype>("group", "count");
        QTest::newRow("position") << UpdateGroup::Position << qsizetype(16);
        QTest::newRow("aircraft") << UpdateGroup::Aircraft << qsizetype(27);
        QTest::newRow("avionics") << UpdateGroup::Avionics << qsizetype(8);
        QTest::newRow("environment") << UpdateGroup::Environment << qsizetype(6);
        QTest::newRow("no such") << static_cast<UpdateGroup>(4) << qsizetype(0);
    }

    void groupsAreRead()
    {
        QFETCH(UpdateGroup, group);
        const QList<SimVarBinding> bindings = simVarBindings(group, MsfsRuntimeProfile::Msfs2020);
        QTEST(bindings.size(), "count");
        for (const SimVarBinding &binding : bindings)
            QCOMPARE(binding.group, group);
    }

    void rowsThatAreNeverReadAreFoundByKey()
    {
        const auto gear = simVarBinding(SimKey::GearHandlePosition, MsfsRuntimeProfile::Msfs2020);
        QVERIFY(gear);
        QCOMPARE(gear->variable, "GEAR HANDLE POSITION");
        QVERIFY(hasSimVar(SimKey::AircraftTitle, MsfsRuntimeProfile::Msfs2024));
    }

    void unknownKeyHasNoRow()
    {
        QVERIFY(!simVarBinding(noKey, MsfsRuntimeProfile::Msfs2020));
        QVERIFY(!hasSimVar(noKey, MsfsRuntimeProfile::Msfs2024));
    }

    void nameAndUnitOf2024StandEachForItself_data()
    {
        tarvo::test::columns<bool, bool, MsfsRuntimeProfile, QString>("hasVariable2024", "hasUnit2024", "profile",
                                                                      "chosen");
        QTest::newRow("both") << true << true << MsfsRuntimeProfile::Msfs2024 << QStringLiteral("NEW/feet");
        QTest::newRow("name alone") << true << false << MsfsRuntimeProfile::Msfs2024 << QStringLiteral("NEW/meters");
        QTest::newRow("unit alone") << false << true << MsfsRuntimeProfile::Msfs2024 << QStringLiteral("OLD/feet");
        QTest::newRow("neither") << false << false << MsfsRuntimeProfile::Msfs2024 << QStringLiteral("OLD/meters");
        QTest::newRow("2020") << true << true << MsfsRuntimeProfile::Msfs2020 << QStringLiteral("OLD/meters");
        QTest::newRow("unknown") << true << true << MsfsRuntimeProfile::Unknown << QStringLiteral("OLD/meters");
    }

    void nameAndUnitOf2024StandEachForItself()
    {
        QFETCH(bool, hasVariable2024);
        QFETCH(bool, hasUnit2024);
        QFETCH(MsfsRuntimeProfile, profile);
        SimVarDefinition definition = simVarDefinitions().front();
        definition.variable2020 = "OLD";
        definition.unit2020 = "meters";
        definition.variable2024 = hasVariable2024 ? "NEW" : "";
        definition.unit2024 = hasUnit2024 ? "feet" : "";
        const SimVarBinding binding = simVarBinding(definition, profile);
        QTEST(QStringLiteral("%1/%2").arg(QLatin1String(binding.variable), QLatin1String(binding.unit)), "chosen");
    }

    void commandsHaveEvents_data()
    {
        tarvo::test::columns<CommandKey, QString>("key", "event");
        QTest::newRow("ident") << CommandKey::TransponderIdent << QStringLiteral("XPNDR_IDENT_ON");
        QTest::newRow("COM1") << CommandKey::Com1Frequency << QStringLiteral("COM_RADIO_SET_HZ");
        QTest::newRow("COM2") << CommandKey::Com2Frequency << QStringLiteral("COM2_RADIO_SET_HZ");
        QTest::newRow("no such") << noCommand << QString();
    }

    void commandsHaveEvents()
    {
        QFETCH(CommandKey, key);
        QFETCH(QString, event);
        for (const MsfsRuntimeProfile profile : everyProfile)
            QCOMPARE(QString::fromLatin1(commandEvent(key, profile)), event);
        QCOMPARE(commandDefinitions().size(), std::size_t(3));
    }

    void eventOf2024IsOneOfItsOwn()
    {
        const CommandDefinition definition{CommandKey::TransponderIdent, "OLD", "NEW"};
        QCOMPARE(commandEvent(definition, MsfsRuntimeProfile::Msfs2020), "OLD");
        QCOMPARE(commandEvent(definition, MsfsRuntimeProfile::Msfs2024), "NEW");
    }

    void reportHasALineForEachRow()
    {
        const QStringList lines = simVarReport().split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 59);
        QCOMPARE(lines.at(3), QStringLiteral("key=3 group=0 type=3"));
        QCOMPARE(lines.last(), QStringLiteral("key=58 group=3 type=2"));
    }
};

TARVO_TEST(SimVarTableTest)
#include "SimVarTableTest.moc"
