#include "DataFolders.h"

#include "AppConfig.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace tarvo;

class DataFoldersTest : public QObject
{
    Q_OBJECT

    QString at(const QString &name) const { return m_dir->filePath(name); }
    void write(const QString &name, const QByteArray &text = "[Auth]\nUsername=me\n") const
    {
        QVERIFY(QDir().mkpath(QFileInfo(at(name)).path()));
        QFile file(at(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    DataFolders found(const QString &program = u"program"_qs) const
    {
        return findDataFolders(at(program), at(u"own"_qs));
    }

    std::unique_ptr<QTemporaryDir> m_dir;

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir().mkpath(at(u"program"_qs)));
    }

    void theRootIsChosen_data()
    {
        QTest::addColumn<bool>("writable");
        QTest::addColumn<bool>("beside");
        QTest::addColumn<bool>("own");
        QTest::addColumn<RootChoice>("choice");
        QTest::newRow("portable, first start") << true << false << false << RootChoice::Beside;
        QTest::newRow("portable") << true << true << false << RootChoice::Beside;
        QTest::newRow("was installed before") << true << false << true << RootChoice::Own;
        QTest::newRow("portable wins over installed") << true << true << true << RootChoice::Beside;
        QTest::newRow("installed, first start") << false << false << false << RootChoice::Own;
        QTest::newRow("installed") << false << false << true << RootChoice::Own;
        QTest::newRow("was portable before") << false << true << false << RootChoice::OwnTakingSettings;
        QTest::newRow("was portable long ago") << false << true << true << RootChoice::Own;
    }
    void theRootIsChosen()
    {
        QFETCH(const bool, writable);
        QFETCH(const bool, beside);
        QFETCH(const bool, own);
        QTEST(chooseRoot({.besideIsWritable = writable, .besideHasSettings = beside, .ownHasSettings = own}), "choice");
    }

    void aPortableCopyKeepsItsDataAndLeavesNoTrace()
    {
        QCOMPARE(found().root, at(u"program"_qs));
        QVERIFY(!QFileInfo::exists(at(u"own"_qs)));
        QCOMPARE(QDir(at(u"program"_qs)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList());
    }

    void theFolderWithSettingsWins()
    {
        write(u"own/config.ini"_qs);
        QCOMPARE(found().root, at(u"own"_qs));
        QVERIFY(found().reason.contains(u"has settings"_qs));
        write(u"program/config.ini"_qs);
        QCOMPARE(found().root, at(u"program"_qs));
        QVERIFY(found().reason.contains(u"not used"_qs));
    }

    void whereNothingCanBeWrittenTheUsersOwnFolderIsMade()
    {
        write(u"file"_qs); // nothing can be written inside a file, not even by root
        const DataFolders folders = found(u"file"_qs);
        QCOMPARE(folders.root, at(u"own"_qs));
        QVERIFY(folders.settingsFrom.isEmpty());
        QVERIFY(!QFileInfo::exists(at(u"own"_qs))); // only looked for
        makeDataFolders(folders);
        QVERIFY(QFileInfo(at(u"own"_qs)).isDir());
    }

    void settingsComeAlong()
    {
        write(u"program/config.ini"_qs);
        makeDataFolders({.root = at(u"own"_qs), .readOnly = {}, .settingsFrom = at(u"program"_qs)});
        QFile copy(at(u"own/config.ini"_qs));
        QVERIFY(copy.open(QIODevice::ReadOnly));
        QCOMPARE(copy.readAll(), QByteArray("[Auth]\nUsername=me\n"));
    }

    void whatCameWithTheProgramIsBesideItOrInstalled()
    {
        const QStringList expected{at(u"usr/bin"_qs), at(u"usr/share/TarvoClient"_qs)};
        QCOMPARE(findDataFolders(at(u"usr/bin"_qs), at(u"own"_qs)).readOnly, expected);
    }

    void theSettingsTellWhereToRead()
    {
        const AppConfig config(DataFolders{.root = at(u"program"_qs), .readOnly = {at(u"a"_qs), at(u"program"_qs)}});
        QCOMPARE(config.dataRoot(), at(u"program"_qs));
        QCOMPARE(config.readFolders(), (QStringList{at(u"program"_qs), at(u"a"_qs)}));
        QCOMPARE(AppConfig(at(u"program"_qs)).readFolders(), QStringList{at(u"program"_qs)});
    }
};

TARVO_TEST(DataFoldersTest)
#include "DataFoldersTest.moc"
