#include "network/IcaoSnapshot.h"
#include "network/IcaoSources.h"
#include "support/SourceFolder.h"
#include "support/TestRegistry.h"

#include <QCoreApplication>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

using namespace tarvo::network;

/// The table of aircraft types that comes with the program.
class TypeDataTest : public QObject
{
    Q_OBJECT

private:
    const QString m_path = tarvo::test::sourceFile(QStringLiteral("resources/Doc8643.txt"));
    QStringList m_lines;
    IcaoSnapshot m_snapshot;

private slots:
    void initTestCase()
    {
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        m_lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
        QCOMPARE(m_lines.takeLast(), QString()); // the file ends with a line end
        file.seek(0);
        m_snapshot = IcaoSnapshot(parseDoc8643(file), {});
    }

    void everyLineHasTheForm()
    {
        static const QRegularExpression form(
            QStringLiteral("^[^\\t]+\\t[^\\t]+\\t[A-Z0-9]{2,4}\\t[LSAHGT][0-9][JTPE-]\\t[LMHJ-]$"));
        for (const QString &line : std::as_const(m_lines))
            QVERIFY2(form.match(line).hasMatch(), qPrintable(line));
    }

    void noLineStandsTwice() { QCOMPARE(QSet<QString>(m_lines.begin(), m_lines.end()).size(), m_lines.size()); }

    void everyLineIsImported()
    {
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(parseDoc8643(file).size(), m_lines.size());
    }

    void thereAreEnoughDesignators() { QVERIFY(m_snapshot.designatorCount() >= 400); }

    void aDesignatorMeansOneKindOfAircraft()
    {
        QHash<QString, QString> kinds;
        for (const QString &line : std::as_const(m_lines)) {
            const QStringList columns = line.split(QLatin1Char('\t'));
            const QString kind = columns.at(3) + columns.at(4);
            QVERIFY2(kinds.value(columns.at(2), kind) == kind, qPrintable(line));
            kinds.insert(columns.at(2), kind);
        }
    }

    void facts_data()
    {
        QTest::addColumn<QString>("maker");
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("wake");
        const auto row = [](const char *designator, const char *maker, const char *type, const char *wake) {
            QTest::newRow(designator) << QString::fromLatin1(maker) << QString::fromLatin1(type)
                                      << QString::fromLatin1(wake);
        };
        row("A20N", "AIRBUS", "L2J", "M");
        row("A321", "AIRBUS", "L2J", "M");
        row("A306", "AIRBUS", "L2J", "H");
        row("A346", "AIRBUS", "L4J", "H");
        row("A35K", "AIRBUS", "L2J", "H");
        row("A388", "AIRBUS", "L4J", "J");
        row("BCS3", "AIRBUS", "L2J", "M");
        row("B738", "BOEING", "L2J", "M");
        row("B39M", "BOEING", "L2J", "M");
        row("B722", "BOEING", "L3J", "M");
        row("B748", "BOEING", "L4J", "H");
        row("B752", "BOEING", "L2J", "M");
        row("B77W", "BOEING", "L2J", "H");
        row("B789", "BOEING", "L2J", "H");
        row("B52", "BOEING", "L8J", "H");
        row("MD11", "MCDONNELL DOUGLAS", "L3J", "H");
        row("CRJ9", "BOMBARDIER", "L2J", "M");
        row("E75L", "EMBRAER", "L2J", "M");
        row("DH8D", "DE HAVILLAND CANADA", "L2T", "M");
        row("AT76", "ATR", "L2T", "M");
        row("C172", "CESSNA", "L1P", "L");
        row("C208", "CESSNA", "L1T", "L");
        row("C25A", "CESSNA", "L2J", "L");
        row("BE58", "BEECH", "L2P", "L");
        row("P28A", "PIPER", "L1P", "L");
        row("TBM9", "SOCATA", "L1T", "L");
        row("PC12", "PILATUS", "L1T", "L");
        row("SR22", "CIRRUS", "L1P", "L");
        row("F16", "LOCKHEED", "L1J", "M");
        row("EUFI", "EUROFIGHTER", "L2J", "M");
        row("A225", "ANTONOV", "L6J", "H");
        row("T154", "TUPOLEV", "L3J", "M");
        row("AJ27", "COMAC", "L2J", "M");
        row("C919", "COMAC", "L2J", "M");
        row("CL2T", "CANADAIR", "A2T", "M");
        row("R22", "ROBINSON", "H1P", "L");
        row("EC35", "EUROCOPTER", "H2T", "L");
        row("V22", "BELL-BOEING", "T2T", "M");
        row("GLID", "(ANY MANUFACTURER)", "L0-", "-");
        row("DISC", "SCHEMPP-HIRTH", "L1P", "L");
    }

    void facts()
    {
        const QList<SwiftAircraftIcaoRow> rows = m_snapshot.rowsFor(QString::fromLatin1(QTest::currentDataTag()));
        QVERIFY(!rows.isEmpty());
        QTEST(rows.first().manufacturer, "maker");
        QTEST(rows.first().type, "type");
        QTEST(rows.first().wakeTurbulenceCategory, "wake");
    }

    void aCopyStandsBesideTheExecutable()
    {
        QFile original(m_path);
        QFile copy(QCoreApplication::applicationDirPath() + QStringLiteral("/resources/Doc8643.txt"));
        QVERIFY(original.open(QIODevice::ReadOnly));
        QVERIFY(copy.open(QIODevice::ReadOnly));
        QCOMPARE(copy.readAll(), original.readAll());
    }
};

TARVO_TEST(TypeDataTest)
#include "TypeDataTest.moc"
