#include "MsfsFolders.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using tarvo::MsfsFolders;

namespace {

const QString store2020 =
    QStringLiteral("local/Packages/Microsoft.FlightSimulator_8wekyb3d8bbwe/LocalCache/UserCfg.opt");
const QString store2024 = QStringLiteral("local/Packages/Microsoft.Limitless_8wekyb3d8bbwe/LocalCache/UserCfg.opt");
const QString other2020 = QStringLiteral("roaming/Microsoft Flight Simulator/UserCfg.opt");
const QString other2024 = QStringLiteral("roaming/Microsoft Flight Simulator 2024/UserCfg.opt");

} // namespace

class MsfsFoldersTest : public QObject
{
    Q_OBJECT

private:
    QString at(const QString &relative) const { return m_dir->filePath(relative); }

    /// "%1" in `text` becomes the test's folder.
    void write(const QString &relative, const QString &text) const
    {
        QVERIFY(QDir().mkpath(QFileInfo(at(relative)).path()));
        QFile file(at(relative));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QString(text).replace(QStringLiteral("%1"), m_dir->path()).toUtf8());
    }

    void folder(const QString &relative) const { QVERIFY(QDir().mkpath(at(relative))); }

    MsfsFolders detect() const
    {
        return tarvo::detectMsfsFolders(at(QStringLiteral("local")), at(QStringLiteral("roaming")));
    }

    std::unique_ptr<QTemporaryDir> m_dir;

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        folder(QStringLiteral("sim"));
        folder(QStringLiteral("sim b"));
    }

    void everyCandidateIsRead_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("is2024");
        QTest::newRow("2020 from the store") << store2020 << false;
        QTest::newRow("2020 from elsewhere") << other2020 << false;
        QTest::newRow("2024 from the store") << store2024 << true;
        QTest::newRow("2024 from elsewhere") << other2024 << true;
        const QString scanned = QStringLiteral("local/Packages/%1/LocalCache/UserCfg.opt");
        const auto row = [&](const char *tag, const char *name, bool is2024) {
            QTest::newRow(tag) << scanned.arg(QLatin1String(name)) << is2024;
        };
        row("scanned 2020", "Other.FlightSimulator_abc", false);
        row("scanned 2020, lower case", "other.flightsimulator", false);
        row("scanned 2024 by its code name", "Other.limitless_abc", true);
        row("scanned 2024 joined", "Other.FlightSimulator2024", true);
        row("scanned 2024 with underscore", "Other.FlightSimulator_2024", true);
        row("scanned 2024 anywhere", "2024.Other.FlightSimulator", true);
    }

    void everyCandidateIsRead()
    {
        QFETCH(const QString, file);
        QFETCH(const bool, is2024);
        write(file, QStringLiteral("InstalledPackagesPath \"%1/sim\"\n"));
        const MsfsFolders found = detect();
        QCOMPARE(found.packages2024, is2024 ? at(QStringLiteral("sim")) : QString());
        QCOMPARE(found.packages2020, is2024 ? QString() : at(QStringLiteral("sim")));
    }

    void otherFoldersAreNotRead()
    {
        write(QStringLiteral("local/Packages/Some.Simulator2024/LocalCache/UserCfg.opt"),
              QStringLiteral("InstalledPackagesPath \"%1/sim\"\n"));
        QCOMPARE(detect(), MsfsFolders());
    }

    void lines_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("folder"); // empty: nothing found
        const QString sim = QStringLiteral("sim");
        QTest::newRow("quoted") << QStringLiteral("InstalledPackagesPath \"%1/sim\"") << sim;
        QTest::newRow("bare") << QStringLiteral("InstalledPackagesPath %1/sim") << sim;
        QTest::newRow("with a blank inside")
            << QStringLiteral("InstalledPackagesPath %1/sim b") << QStringLiteral("sim b");
        QTest::newRow("indented, tab, trailing blanks, CR")
            << QStringLiteral("a 1\r\n  \tInstalledPackagesPath\t \"%1/sim\" \t\r\nb 2\r\n") << sim;
        QTest::newRow("only one pair of quotes goes")
            << QStringLiteral("InstalledPackagesPath \"\"%1/sim\"\"") << QString();
        QTest::newRow("one quote stays") << QStringLiteral("InstalledPackagesPath \"%1/sim") << QString();
        QTest::newRow("no path") << QStringLiteral("InstalledPackagesPath ") << QString();
        QTest::newRow("empty quotes") << QStringLiteral("InstalledPackagesPath \"\"") << QString();
        QTest::newRow("joined word") << QStringLiteral("InstalledPackagesPathX %1/sim") << QString();
        QTest::newRow("another case") << QStringLiteral("installedpackagespath %1/sim") << QString();
        QTest::newRow("word before it") << QStringLiteral("x InstalledPackagesPath %1/sim") << QString();
        QTest::newRow("missing folder") << QStringLiteral("InstalledPackagesPath %1/nowhere") << QString();
        QTest::newRow("only the first line counts")
            << QStringLiteral("InstalledPackagesPath %1/nowhere\nInstalledPackagesPath %1/sim") << QString();
        QTest::newRow("long line before it")
            << QString(100000, u' ') + QStringLiteral("\nInstalledPackagesPath %1/sim") << sim;
    }

    void lines()
    {
        QFETCH(const QString, text);
        QFETCH(const QString, folder);
        write(other2020, text);
        QCOMPARE(detect().packages2020, folder.isEmpty() ? QString() : at(folder));
    }

    void aMissingFolderLeavesTheNextCandidate()
    {
        write(store2020, QStringLiteral("InstalledPackagesPath %1/nowhere\n"));
        write(other2020, QStringLiteral("InstalledPackagesPath %1/sim\n"));
        QCOMPARE(detect().packages2020, at(QStringLiteral("sim")));
    }

    void theStoreComesFirst()
    {
        write(store2024, QStringLiteral("InstalledPackagesPath %1/sim\n"));
        write(other2024, QStringLiteral("InstalledPackagesPath %1/sim b\n"));
        QCOMPARE(detect().packages2024, at(QStringLiteral("sim")));
    }

    void communityFolders_data()
    {
        QTest::addColumn<QStringList>("folders");
        QTest::addColumn<QString>("community2020");
        QTest::addColumn<QString>("community2024");
        const QString plain = QStringLiteral("sim/Community");
        const QString numbered = QStringLiteral("sim/Community2024");
        QTest::newRow("none") << QStringList() << QString() << QString();
        QTest::newRow("Community") << QStringList{plain} << plain << plain;
        QTest::newRow("Community2024 serves 2024 only") << QStringList{numbered} << QString() << numbered;
        QTest::newRow("Community is preferred") << QStringList{plain, numbered} << plain << plain;
    }

    void communityFolders()
    {
        QFETCH(const QStringList, folders);
        QFETCH(const QString, community2020);
        QFETCH(const QString, community2024);
        for (const QString &name : folders)
            folder(name);
        write(other2020, QStringLiteral("InstalledPackagesPath %1/sim/\n"));
        write(other2024, QStringLiteral("InstalledPackagesPath \"%1/sim/\"\n"));
        const MsfsFolders found = detect();
        QCOMPARE(found.packages2020, at(QStringLiteral("sim/")));
        QCOMPARE(found.community2020, community2020.isEmpty() ? QString() : at(community2020));
        QCOMPARE(found.community2024, community2024.isEmpty() ? QString() : at(community2024));
    }

    void withoutTheEnvironmentThereIsNothing()
    {
        write(store2020, QStringLiteral("InstalledPackagesPath %1/sim\n"));
        write(other2024, QStringLiteral("InstalledPackagesPath %1/sim\n"));
        QCOMPARE(tarvo::detectMsfsFolders({}, {}), MsfsFolders());
    }

    void binaryGarbageIsRead()
    {
        QByteArray garbage;
        for (int i = 0; i < 4096; ++i)
            garbage += static_cast<char>(i * 7);
        write(other2020, QString());
        QFile file(at(other2020));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(garbage);
        file.close();
        QCOMPARE(detect(), MsfsFolders());
    }
};

TARVO_TEST(MsfsFoldersTest)
#include "MsfsFoldersTest.moc"
