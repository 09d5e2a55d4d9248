#include "simulator/msfs/library/AircraftFiles.h"
#include "PackageTree.h"
#include "support/TestRegistry.h"

#include <QHash>
#include <QTest>

using namespace tarvo::simulator::msfs;
using namespace tarvo::test;

class AircraftFilesTest : public QObject
{
    Q_OBJECT

private slots:
    /// "file=manufacturer/model>base" for each file; the answer is "manufacturer/model" of file A.
    void chainsAre_data()
    {
        QTest::addColumn<QStringList>("files");
        QTest::addColumn<QString>("metadataOfA");
        const auto row = [](const char *name, QStringView files, QStringView metadata) {
            QTest::newRow(name) << files.toString().split(u' ') << metadata.toString();
        };
        row("alone", u"A=BOEING/737>", u"BOEING/737");
        row("its base knows more", u"A=BOEING/>B B=AIRBUS/A320>", u"BOEING/A320");
        row("its base knows all", u"A=/>B B=AIRBUS/A320>", u"AIRBUS/A320");
        row("three", u"A=/>B B=AIRBUS/>C C=BOEING/737>", u"AIRBUS/737");
        row("without base", u"A=BOEING/>gone", u"BOEING/");
        row("its own base", u"A=BOEING/>A", u"BOEING/");
        row("a circle of two", u"A=/737>B B=BOEING/A320>A", u"BOEING/737");
        row("a circle of three", u"A=/>B B=/737>C C=BOEING/747>A", u"BOEING/737");
        row("into a circle", u"A=/>B B=/737>C C=BOEING/747>B", u"BOEING/737");
    }
    void chainsAre()
    {
        QFETCH(QStringList, files);
        const PackageTree tree;
        for (const QString &file : files) {
            const QString rest = file.section(u'=', 1);
            const QString own = rest.section(u'>', 0, 0);
            const QString text =
                QStringLiteral("[GENERAL]\nicao_manufacturer=%1\nicao_model=%2\n[VARIATION]\nbase_container=%3")
                    .arg(own.section(u'/', 0, 0), own.section(u'/', 1),
                         rest.endsWith(u'>') ? QString() : QStringLiteral("..\\") + rest.section(u'>', 1));
            tree.write(file.section(u'=', 0, 0) + QStringLiteral("/aircraft.cfg"), text.toUtf8());
        }
        // Whichever file comes first, A reads the same.
        QStringList names;
        for (const QString &file : files)
            names.append(file.section(u'=', 0, 0));
        for (const QString &first : names) {
            AircraftFiles cached;
            const QString firstPath = tree.path(first + QStringLiteral("/aircraft.cfg"));
            cached.metadataOf(firstPath, cached.take(firstPath));
            const QString path = tree.path(QStringLiteral("A/aircraft.cfg"));
            const MsfsAircraftMetadata metadata = cached.metadataOf(path, cached.take(path));
            QTEST(metadata.icaoManufacturer + u'/' + metadata.icaoModel, "metadataOfA");
        }
    }

    void allSevenValuesComeFromTheBase()
    {
        const PackageTree tree;
        tree.write(QStringLiteral("base/aircraft.cfg"),
                   "[GENERAL]\nicao_type_designator=1\nicao_manufacturer=2\nicao_model=3\nicao_engine_type=4\n"
                   "icao_wtc=5\ncategory=6\nicao_engine_count=7");
        const QString path = tree.write(QStringLiteral("a/aircraft.cfg"), "[VARIATION]\nbase_container=\"../base\"");
        AircraftFiles files;
        const MsfsAircraftMetadata expected{QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"),
                                            QStringLiteral("4"), QStringLiteral("5"), QStringLiteral("6"),
                                            QStringLiteral("7")};
        QCOMPARE(files.metadataOf(path, files.take(path)), expected);
    }

    void theBaseIs_data()
    {
        QTest::addColumn<QString>("container");
        QTest::addColumn<QString>("file");
        QTest::newRow("a folder") << QStringLiteral("..\\base") << QStringLiteral("base/aircraft.cfg");
        QTest::newRow("a folder, by slashes") << QStringLiteral("../base/") << QStringLiteral("base/aircraft.cfg");
        QTest::newRow("a file") << QStringLiteral("..\\base\\other.cfg") << QStringLiteral("base/other.cfg");
        QTest::newRow("none") << QStringLiteral("..\\gone") << QStringLiteral("gone/aircraft.cfg");
        QTest::newRow("below") << QStringLiteral("under") << QStringLiteral("a/under/aircraft.cfg");
        QTest::newRow("where it is") << QStringLiteral(".") << QStringLiteral("a/aircraft.cfg");
        QTest::newRow("absolute") << QStringLiteral("ABSOLUTE") << QStringLiteral("base/aircraft.cfg");
        QTest::newRow("not told") << QString() << QString();
    }
    void theBaseIs()
    {
        QFETCH(QString, container);
        QFETCH(QString, file);
        const PackageTree tree;
        tree.makeFolder(QStringLiteral("base"));
        tree.write(QStringLiteral("base/other.cfg"), "x");
        if (container == QLatin1String("ABSOLUTE"))
            container = tree.path(QStringLiteral("base"));
        const AircraftConfig config = parseAircraftConfig("[VARIATION]\nbase_container=" + container.toUtf8());
        QCOMPARE(baseFileOf(config, tree.path(QStringLiteral("a/aircraft.cfg"))),
                 file.isEmpty() ? QString() : tree.path(file));
    }

    void aBaseOutsideOfItsSectionIsNone()
    {
        QCOMPARE(baseFileOf(parseAircraftConfig("[GENERAL]\nbase_container=x"), QStringLiteral("/a/aircraft.cfg")),
                 QString());
    }

    void aLongChainEnds()
    {
        QHash<QString, QByteArray> contents;
        constexpr int length = 20'000;
        const auto pathOf = [](int number) { return QStringLiteral("/nowhere/%1/aircraft.cfg").arg(number); };
        for (int i = 0; i < length; ++i)
            contents[pathOf(i)] = "[VARIATION]\nbase_container=../" + QByteArray::number(i + 1);
        contents[pathOf(length)] = "[GENERAL]\nicao_model=LAST";
        int reads = 0;
        AircraftFiles files([&](const QString &path) {
            ++reads;
            return contents.value(path);
        });
        for (int i = 0; i <= length; ++i)
            QCOMPARE(files.metadataOf(pathOf(i), files.take(pathOf(i))).icaoModel, QStringLiteral("LAST"));
        QCOMPARE(reads, length + 1); // each once, whoever asked first
    }

    void whatIsRead_data()
    {
        QTest::addColumn<QByteArray>("written");
        QTest::addColumn<qsizetype>("read");
        QTest::newRow("nothing") << QByteArray() << qsizetype(0);
        QTest::newRow("some") << QByteArray(5000, 'x') << qsizetype(5000);
        QTest::newRow("more than any file has") << QByteArray(5 << 20, 'x') << qsizetype(4 << 20);
    }
    void whatIsRead()
    {
        QFETCH(QByteArray, written);
        const PackageTree tree;
        QTEST(readAircraftFile(tree.write(QStringLiteral("x"), written)).size(), "read");
    }

    void nothingIsReadOf()
    {
        const PackageTree tree;
        QCOMPARE(readAircraftFile(tree.path(QStringLiteral("gone"))), QByteArray());
        QCOMPARE(readAircraftFile(tree.path()), QByteArray());
    }
};

TARVO_TEST(AircraftFilesTest)
#include "AircraftFilesTest.moc"
