#include "ui/viewmodel/SettingsViewModel.h"

#include "IniFormat.h"
#include "support/Columns.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"
#include "ui/AccountStage.h"

#include <QFile>
#include <QMetaType>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>

#include <limits>
#include <memory>

using tarvo::AppConfig;
using tarvo::ServiceEndpoints;
using tarvo::test::columns;
using tarvo::ui::viewmodel::SettingsViewModel;
namespace config = tarvo::config;

namespace {

ServiceEndpoints someEndpoints()
{
    ServiceEndpoints endpoints;
    endpoints.apiBaseUrl = u"https://example.org/api"_qs;
    endpoints.fsdHost = u"fsd.example.org"_qs;
    endpoints.voiceHost = u"voice.example.org"_qs;
    return endpoints;
}

struct SettingsStage : tarvo::test::AccountStage
{
    std::unique_ptr<SettingsViewModel> made;

    SettingsViewModel &model()
    {
        if (!made)
            made = std::make_unique<SettingsViewModel>(config, api, someEndpoints());
        return *made;
    }
    QVariant get(const char *property) { return model().property(property); }
    void set(const char *property, const QVariant &value) { QVERIFY(model().setProperty(property, value)); }
    QString makeFolder(const QString &name) const
    {
        QDir(folder.path()).mkpath(name);
        return QFileInfo(folder.filePath(name)).canonicalFilePath();
    }
    QVariant stored(const QString &key) const
    {
        return QSettings(folder.filePath(u"config.ini"_qs), tarvo::ini::format()).value(key);
    }
    /// The keys that saveAll() writes.
    QStringList save()
    {
        const QSignalSpy written(&config, &AppConfig::configChanged);
        model().saveAll();
        QStringList keys;
        for (const QVariantList &row : written)
            keys << row[0].toString();
        return keys;
    }
};

} // namespace

class SettingsViewModelTest : public QObject
{
    Q_OBJECT

private slots:
    void plainFields_data()
    {
        columns<QByteArray, QString>("property", "key");
        QTest::addColumn<QVariant>("before"); ///< the key's default
        QTest::addColumn<QVariant>("after");
        const auto row = [](const char *property, const char *key, const QVariant &before, const QVariant &after) {
            QTest::newRow(property) << QByteArray(property) << QString::fromLatin1(key) << before << after;
        };
        row("username", "Auth/Username", u""_qs, u"1001"_qs);
        row("rememberPassword", "Auth/RememberPassword", false, true);
        row("autoLogin", "Auth/AutoLogin", false, true);
        row("vatsimProtocol", "Auth/Vatsim", true, false);
        row("realname", "Profile/Realname", u""_qs, u"王小明"_qs);
        row("homeAirport", "Profile/HomeAirport", u"ZBAA"_qs, u"ZSPD"_qs);
        row("xplaneUdpPort", "XPlane/UDPPort", 49000, 49010);
        row("xplaneNetworkAddress", "XPlane/NetworkAddress", u"127.0.0.1"_qs, u"192.168.1.5"_qs);
        row("msfsPackagesPath2020", "MSFS/PackagesPath2020", u""_qs, u"C:/Packages"_qs);
        row("msfsCommunityPath2020", "MSFS/CommunityPath2020", u""_qs, u"C:/Community"_qs);
        row("msfsPackagesPath2024", "MSFS/PackagesPath2024", u""_qs, u"D:/Packages"_qs);
        row("msfsCommunityPath2024", "MSFS/CommunityPath2024", u""_qs, u"D:/Community"_qs);
    }
    void plainFields()
    {
        QFETCH(QByteArray, property);
        QFETCH(QString, key);
        QFETCH(QVariant, before);
        QFETCH(QVariant, after);
        SettingsStage stage;
        QCOMPARE(stage.get(property), before);
        QSignalSpy changed(&stage.model(), &SettingsViewModel::settingsChanged);
        stage.set(property, after);
        QCOMPARE(changed.size(), 1);
        stage.set(property, after);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(stage.get(property), after);
        QVERIFY(stage.model().isEdited());
        QVERIFY(stage.stored(key) != after); // a buffer
        QCOMPARE(stage.save(), QStringList{key});
        QVERIFY(!stage.model().isEdited());
        QVariant written = stage.stored(key);
        QVERIFY(written.convert(after.metaType()));
        QCOMPARE(written, after);
        QCOMPARE(stage.save(), QStringList());
        stage.model().reload();
        QCOMPARE(stage.get(property), after);
    }

    void pathLists_data()
    {
        columns<QByteArray, QString>("property", "key");
        QTest::newRow("X-Plane") << QByteArray("xplaneCslPathsText") << u"XPlane/CSL"_qs;
        QTest::newRow("MSFS 2020") << QByteArray("msfsCustomMappingPaths2020") << u"MSFS/CustomMappingPaths2020"_qs;
        QTest::newRow("MSFS 2024") << QByteArray("msfsCustomMappingPaths2024") << u"MSFS/CustomMappingPaths2024"_qs;
    }
    void pathLists()
    {
        QFETCH(QByteArray, property);
        QFETCH(QString, key);
        SettingsStage stage;
        const QStringList paths{stage.makeFolder(u"a"_qs), stage.makeFolder(u"b c"_qs), stage.makeFolder(u"丁"_qs),
                                stage.makeFolder(u"e"_qs)};
        QCOMPARE(stage.get(property), u""_qs);
        stage.set(property, u" %1 ,;\r\n%2;; %3\r%4\n , "_qs.arg(paths[0], paths[1], paths[2], paths[3]));
        QCOMPARE(stage.save(), QStringList{key});
        QCOMPARE(stage.stored(key).toStringList(), paths);
        stage.model().reload();
        QCOMPARE(stage.get(property), paths.join(u'\n'));
        QCOMPARE(stage.save(), QStringList());
        stage.set(property, QString());
        stage.save();
        QCOMPARE(stage.stored(key).toString(), QString());
    }

    void listsAreShownAndKeptAsTheyAreStored()
    {
        SettingsStage stage;
        const QString there = stage.makeFolder(u"there"_qs);
        const QString odd = there + u"/../there"_qs;
        const QString gone = u"/nowhere/on a drive"_qs;
        stage.config.set(config::xplaneCsl, {there, gone, odd});
        QCOMPARE(stage.get("xplaneCslPathsText"), QStringList({there, gone, odd}).join(u'\n'));
        QVERIFY(!stage.model().isEdited());
        TRY_COMPARE(stage.model().hints(), (QVariantMap{{u"xplaneCslPathsText"_qs, u"找不到文件夹："_qs + gone}}));
        const QString other = stage.makeFolder(u"other"_qs);
        stage.set("xplaneCslPathsText", QStringList({other, gone, odd}).join(u'\n'));
        QCOMPARE(stage.save(), QStringList{u"XPlane/CSL"_qs});
        QCOMPARE(stage.stored(u"XPlane/CSL"_qs).toStringList(), (QStringList{other, gone, odd}));
        TRY_COMPARE(stage.model().hints(), (QVariantMap{{u"xplaneCslPathsText"_qs, u"找不到文件夹："_qs + gone}}));
        stage.model().reload();
        QCOMPARE(stage.get("xplaneCslPathsText"), QStringList({other, gone, odd}).join(u'\n'));
        QCOMPARE(stage.save(), QStringList());
    }

    void theOrderIsTheTables()
    {
        SettingsStage stage;
        stage.set("msfsCustomMappingPaths2020", u"/x"_qs);
        stage.set("xplaneUdpPort", 1);
        stage.set("vatsimProtocol", false);
        stage.set("password", u"secret"_qs);
        stage.set("username", u"1001"_qs);
        QCOMPARE(stage.save(), (QStringList{u"Auth/Username"_qs, u"Auth/Password"_qs, u"Auth/Vatsim"_qs,
                                            u"XPlane/UDPPort"_qs, u"MSFS/CustomMappingPaths2020"_qs}));
    }

    void aPasswordIsEncrypted()
    {
        SettingsStage stage;
        stage.set("password", u"geheim123"_qs);
        stage.save();
        QFile file(stage.folder.filePath(u"config.ini"_qs));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(!file.readAll().contains("geheim123"));
        QCOMPARE(stage.config.get(config::authPassword), u"geheim123"_qs);
        stage.model().reload();
        QCOMPARE(stage.get("password"), u"geheim123"_qs);
    }

    void reloadDiscardsEdits()
    {
        SettingsStage stage;
        QCOMPARE(stage.model().saveStatus(), u"已从 config.ini 加载"_qs);
        stage.set("username", u"1001"_qs);
        stage.set("xplaneUdpPortText", u"nonsense"_qs);
        QSignalSpy changed(&stage.model(), &SettingsViewModel::settingsChanged);
        QSignalSpy status(&stage.model(), &SettingsViewModel::saveStatusChanged);
        stage.model().reload();
        QCOMPARE(changed.size(), 1);
        QCOMPARE(status.size(), 1);
        QCOMPARE(stage.get("username"), u""_qs);
        QCOMPARE(stage.get("xplaneUdpPortText"), u"49000"_qs);
        QVERIFY(!stage.model().isEdited());
    }

    void savingTells()
    {
        SettingsStage stage;
        QSignalSpy status(&stage.model(), &SettingsViewModel::saveStatusChanged);
        stage.model().saveAll();
        QCOMPARE(stage.model().saveStatus(), u"已保存到 config.ini"_qs);
        QCOMPARE(status.size(), 1);
    }

    void savingWhereNothingCanBeWrittenTellsThat()
    {
        SettingsStage stage;
        QFile blocker(stage.folder.filePath(u"blocker"_qs));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        AppConfig config(stage.folder.filePath(u"blocker/inside"_qs)); // no folder can be made inside a file
        SettingsViewModel model(config, stage.api, someEndpoints());
        model.saveAll();
        QCOMPARE(model.saveStatus(), u"无法写入 config.ini（磁盘已满或文件夹只读），更改暂时只在本次运行中有效"_qs);
    }

    void theAccountsName_data()
    {
        columns<QString, QString, QStringList>("storedName", "shown", "saved");
        const QStringList name{u"Profile/Realname"_qs};
        QTest::newRow("empty") << QString() << u"王小明"_qs << name;
        QTest::newRow("Unknown") << u"Unknown"_qs << u"王小明"_qs << name;
        QTest::newRow("unknown, in other letters") << u"unknown"_qs << u"unknown"_qs << QStringList();
        QTest::newRow("his own") << u"小王"_qs << u"小王"_qs << QStringList();
    }
    void theAccountsName()
    {
        QFETCH(QString, storedName);
        QFETCH(QStringList, saved);
        SettingsStage stage;
        stage.signIn();
        stage.config.set(config::profileRealname, storedName);
        QTEST(stage.get("realname").toString(), "shown");
        QVERIFY(!stage.model().isEdited()); // not by the pilot
        QCOMPARE(stage.save(), saved);
        QTEST(stage.config.get(config::profileRealname), "shown");
    }

    void theHomeAirport_data()
    {
        columns<QString, QString>("storedAirport", "shown");
        QTest::newRow("empty") << QString() << u"ZBAA"_qs;
        QTest::newRow("ZZZZ") << u"ZZZZ"_qs << u"ZBAA"_qs;
        QTest::newRow("his own") << u"ZSPD"_qs << u"ZSPD"_qs;
    }
    void theHomeAirport()
    {
        QFETCH(QString, storedAirport);
        SettingsStage stage;
        stage.config.set(config::profileHomeAirport, storedAirport);
        QTEST(stage.get("homeAirport").toString(), "shown");
        QVERIFY(!stage.model().isEdited()); // by nobody
        stage.set("homeAirport", u"ZGGG"_qs);
        QVERIFY(stage.model().isEdited());
        stage.model().reload();
        QVERIFY(!stage.model().isEdited());
        stage.save();
        QTEST(stage.config.get(config::profileHomeAirport), "shown");
    }

    void whoHearsOfAChangeMayReload()
    {
        SettingsStage stage;
        stage.set("username", u"1001"_qs);
        stage.set("homeAirport", u"ZSPD"_qs);
        connect(&stage.config, &AppConfig::configChanged, &stage.model(), &SettingsViewModel::reload);
        stage.model().saveAll();
        QCOMPARE(stage.config.get(config::authUsername), u"1001"_qs);
        QCOMPARE(stage.config.get(config::profileHomeAirport), u"ZSPD"_qs);
    }

    void theLibraryIsReadAnew()
    {
        SettingsStage stage;
        QSignalSpy status(&stage.model(), &SettingsViewModel::saveStatusChanged);
        stage.set("username", u"1001"_qs);
        stage.model().triggerMsfsLibraryReload();
        QCOMPARE(stage.config.get(config::msfsLibraryReloadToken), 1);
        QCOMPARE(stage.get("msfsLibraryReloadToken"), 1);
        QCOMPARE(stage.model().saveStatus(), u"已触发 MSFS 机模库重载"_qs);
        QCOMPARE(status.size(), 1);
        stage.model().triggerMSFSLibraryReload();
        QCOMPARE(stage.config.get(config::msfsLibraryReloadToken), 2);
        QCOMPARE(stage.get("username"), u"1001"_qs); // edits stay
    }

    void theTokenBeginsAnewAfterTheHighest()
    {
        SettingsStage stage;
        stage.config.set(config::msfsLibraryReloadToken, std::numeric_limits<int>::max()); // by hand
        stage.model().triggerMsfsLibraryReload();
        QCOMPARE(stage.get("msfsLibraryReloadToken"), 0);
    }

    void theBuild()
    {
        SettingsStage stage;
        QCoreApplication::setApplicationVersion(u"1.2.3"_qs);
        QCOMPARE(stage.get("appVersion"), u"1.2.3"_qs);
        QCOMPARE(stage.get("dataFolder"), QDir::toNativeSeparators(stage.config.dataRoot()));
        QCOMPARE(stage.get("apiBaseUrl"), u"https://example.org/api"_qs);
        QCOMPARE(stage.get("networkAddress"), u"fsd.example.org:6809"_qs);
        QCOMPARE(stage.get("voiceAddress"), u"voice.example.org:6808"_qs);
    }

    void aTypedPort_data()
    {
        columns<QString, int, bool>("typed", "port", "good");
        QTest::newRow("the lowest") << u"1"_qs << 1 << true;
        QTest::newRow("the highest") << u"65535"_qs << 65535 << true;
        QTest::newRow("with blanks") << u" 49010 "_qs << 49010 << true;
        QTest::newRow("none") << u"0"_qs << 49000 << false;
        QTest::newRow("too high") << u"65536"_qs << 49000 << false;
        QTest::newRow("letters") << u"49a"_qs << 49000 << false;
        QTest::newRow("nothing") << QString() << 49000 << false;
        QTest::newRow("below") << u"-1"_qs << 49000 << false;
    }
    void aTypedPort()
    {
        QFETCH(QString, typed);
        QFETCH(bool, good);
        SettingsStage stage;
        stage.set("xplaneUdpPortText", typed);
        QCOMPARE(stage.get("xplaneUdpPortText"), typed);
        QTEST(stage.get("xplaneUdpPort").toInt(), "port");
        QCOMPARE(stage.model().hints().contains(u"xplaneUdpPort"_qs), !good);
        stage.save();
        QTEST(stage.config.get(config::xplaneUdpPort), "port");
    }

    void missingFoldersAreMarked()
    {
        SettingsStage stage;
        const QString there = stage.makeFolder(u"there"_qs);
        stage.set("msfsPackagesPath2020", there);
        stage.set("msfsCommunityPath2024", u" /nowhere/2024 "_qs);
        stage.set("xplaneCslPathsText", there + u"\n/nowhere/a; /nowhere/b"_qs);
        TRY_COMPARE(stage.model().hints(),
                    (QVariantMap{{u"msfsCommunityPath2024"_qs, u"找不到文件夹：/nowhere/2024"_qs},
                                 {u"xplaneCslPathsText"_qs, u"找不到文件夹：/nowhere/a、/nowhere/b"_qs}}));
        QSignalSpy told(&stage.model(), &SettingsViewModel::hintsChanged);
        stage.set("msfsCommunityPath2024", QString());
        QVERIFY(!stage.model().hints().contains(u"msfsCommunityPath2024"_qs));
        QVERIFY(!told.isEmpty());
        stage.set("xplaneCslPathsText", there);
        TRY_COMPARE(stage.model().hints(), QVariantMap());
    }

    void aFolderIsMadeMeanwhile_data()
    {
        QTest::addColumn<bool>("saved");
        QTest::newRow("seen by saving") << true;
        QTest::newRow("seen by reloading") << false;
    }
    void aFolderIsMadeMeanwhile()
    {
        QFETCH(bool, saved);
        SettingsStage stage;
        stage.config.set(config::msfsPackagesPath2020, stage.folder.filePath(u"later"_qs));
        TRY_VERIFY(stage.model().hints().contains(u"msfsPackagesPath2020"_qs));
        stage.makeFolder(u"later"_qs);
        if (saved)
            stage.model().saveAll();
        else
            stage.model().reload();
        TRY_COMPARE(stage.model().hints(), QVariantMap());
    }
};

TARVO_TEST(SettingsViewModelTest)
#include "SettingsViewModelTest.moc"
