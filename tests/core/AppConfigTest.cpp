#include "AppConfig.h"
#include "ServiceEndpoints.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using tarvo::AppConfig;
using tarvo::test::columns;
namespace config = tarvo::config;

class AppConfigTest : public QObject
{
    Q_OBJECT

private:
    QString at(const QString &relative) const { return m_dir->filePath(relative); }
    QString configPath() const { return at(QStringLiteral("config.ini")); }

    /// The bytes of the file; "%1" in `text` becomes the test's folder.
    void writeFile(QByteArray text) const
    {
        QFile file(configPath());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text.replace("%1", m_dir->path().toUtf8()));
    }

    QByteArray readFile() const
    {
        QFile file(configPath());
        return file.open(QIODevice::ReadOnly | QIODevice::Text) ? file.readAll() : QByteArray();
    }

    /// The stored text of `key` ("Name") as the file shows it.
    QByteArray storedLine(const QByteArray &name) const
    {
        for (const QByteArray &line : readFile().split('\n')) {
            if (line.startsWith(name + '='))
                return line.sliced(name.size() + 1);
        }
        return "no such line";
    }

    std::unique_ptr<QTemporaryDir> m_dir;

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        qunsetenv("LOCALAPPDATA");
        qunsetenv("APPDATA");
    }

    void theProgramsOwnSettingsStandBesideIt()
    {
        QCOMPARE(AppConfig::instance().dataRoot(), QCoreApplication::applicationDirPath());
        QCOMPARE(&AppConfig::instance(), &AppConfig::instance());
    }

    void foldersFollowTheDataRoot()
    {
        const AppConfig settings(m_dir->path());
        QCOMPARE(settings.dataRoot(), m_dir->path());
        QCOMPARE(settings.logsFolder(), at(QStringLiteral("logs")));
    }

    void aFreshFileHoldsEveryDefaultButTheVolatileOne()
    {
        const AppConfig settings(m_dir->path());
        // QSettings sorts what it writes for the first time.
        QCOMPARE(readFile(), QByteArray("[Auth]\nAutoLogin=false\nPassword=\nRefreshToken=\nRememberPassword=false\n"
                                        "Username=\nVatsim=true\n\n"
                                        "[MSFS]\nCommunityPath2020=\nCommunityPath2024=\n"
                                        "CustomMappingPaths2020=\nCustomMappingPaths2024=\n"
                                        "LibraryReloadToken=0\nPackagesPath2020=\nPackagesPath2024=\n\n"
                                        "[Profile]\nHomeAirport=ZBAA\nRealname=\n\n"
                                        "[Voice]\nConflictPlayDevice=0\nConflictVolume=1\nDriver=13\n"
                                        "InputDevice=Default\nMicGain=0\nOutputHeadphoneDevice=Default\n"
                                        "OutputSpeakerDevice=Default\nPttKey=kb:163\nPttPlayDevice=0\n"
                                        "PttPressFreq=1500\nPttReleaseFreq=1000\nPttVolume=1\n\n"
                                        "[XPlane]\nCSL=\nNetworkAddress=127.0.0.1\nUDPPort=49000\n"));
    }

    void defaultsAreRead()
    {
        const AppConfig settings(m_dir->path());
        QCOMPARE(settings.get(config::authToken), QString());
        QCOMPARE(settings.get(config::authPassword), QString());
        QCOMPARE(settings.get(config::authVatsim), true);
        QCOMPARE(settings.get(config::authAutoLogin), false);
        QCOMPARE(settings.get(config::profileHomeAirport), QStringLiteral("ZBAA"));
        QCOMPARE(settings.get(config::xplaneUdpPort), 49000);
        QCOMPARE(settings.get(config::xplaneCsl), QStringList());
        QCOMPARE(settings.get(config::voicePttPressFreq), 1500.0);
        QCOMPARE(settings.get(config::voicePttKey), QStringLiteral("kb:163"));
    }

    void whatIsInTheFileStays()
    {
        writeFile("[Auth]\nVatsim=false\n[Foreign]\nkey=kept\n[XPlane]\nUDPPort=garbage\n");
        {
            const AppConfig settings(m_dir->path());
            QCOMPARE(settings.get(config::authVatsim), false);
        }
        QCOMPARE(storedLine("Vatsim"), QByteArray("false"));
        QCOMPARE(storedLine("key"), QByteArray("kept"));
        QCOMPARE(storedLine("UDPPort"), QByteArray("garbage"));
        QCOMPARE(storedLine("HomeAirport"), QByteArray("ZBAA"));
    }

    void aSecondStartWritesNothing()
    {
        {
            const AppConfig settings(m_dir->path());
        }
        QFile file(configPath());
        QVERIFY(file.open(QIODevice::ReadWrite));
        const QDateTime past = QDateTime::currentDateTime().addDays(-1);
        QVERIFY(file.setFileTime(past, QFileDevice::FileModificationTime));
        file.close();
        const QDateTime before = QFileInfo(configPath()).lastModified();
        {
            const AppConfig settings(m_dir->path());
        }
        QCOMPARE(QFileInfo(configPath()).lastModified(), before);
    }

    void everyFormIsOnDiskBeforeItIsAnnounced()
    {
        AppConfig settings(m_dir->path());
        QList<QByteArray> seen;
        connect(&settings, &AppConfig::configChanged, this,
                [&](const QString &key) { seen += key.toUtf8() + '=' + storedLine(key.section(u'/', 1).toUtf8()); });
        settings.set(config::profileRealname, QStringLiteral("Wei"));
        settings.set(config::authAutoLogin, true);
        settings.set(config::xplaneUdpPort, -7);
        settings.set(config::voiceMicGain, -3.25);
        settings.set(config::xplaneCsl, QStringList{m_dir->path()});
        QCOMPARE(seen, (QList<QByteArray>{"Profile/Realname=Wei", "Auth/AutoLogin=true", "XPlane/UDPPort=-7",
                                          "Voice/MicGain=-3.25", "XPlane/CSL=" + m_dir->path().toUtf8()}));
        const AppConfig restarted(m_dir->path());
        QCOMPARE(restarted.get(config::profileRealname), QStringLiteral("Wei"));
        QCOMPARE(restarted.get(config::authAutoLogin), true);
        QCOMPARE(restarted.get(config::xplaneUdpPort), -7);
        QCOMPARE(restarted.get(config::voiceMicGain), -3.25);
        QCOMPARE(restarted.get(config::xplaneCsl), QStringList{QFileInfo(m_dir->path()).canonicalFilePath()});
    }

    void anUnchangedValueIsAnnouncedToo()
    {
        AppConfig settings(m_dir->path());
        const QSignalSpy changes(&settings, &AppConfig::configChanged);
        settings.set(config::xplaneUdpPort, 49000);
        QCOMPARE(changes.size(), 1);
    }

    void texts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QString();
        QTest::newRow("comma") << QStringLiteral("Li, Wei");
        QTest::newRow("semicolon, hash, percent, equals") << QStringLiteral(";#%20=[x]");
        QTest::newRow("at sign") << QStringLiteral("@Invalid()");
        QTest::newRow("looks like an object") << QStringLiteral("@Variant(x)");
        QTest::newRow("holds what looks like one") << QStringLiteral("of @Variant(x) and @DateTime(y)");
        QTest::newRow("quotes and backslash") << QStringLiteral("\"C:\\new\\x41\"");
        QTest::newRow("line ends and NUL") << QStringLiteral("a\r\nb") + QChar(u'\0') + u'c';
        QTest::newRow("blanks at the ends") << QStringLiteral("  a  ");
        QTest::newRow("Chinese and beyond") << QStringLiteral("张伟 \U0001F6EB");
        QTest::newRow("huge") << QString(20'000, u'字');
    }

    void texts()
    {
        QFETCH(const QString, text);
        {
            AppConfig settings(m_dir->path());
            settings.set(config::profileRealname, text);
            QCOMPARE(settings.get(config::profileRealname), text);
        }
        const AppConfig restarted(m_dir->path());
        QCOMPARE(restarted.get(config::profileRealname), text);
        QCOMPARE(restarted.startupWarning(), QString());
    }

    void volatileValuesStayInMemory()
    {
        {
            AppConfig settings(m_dir->path());
            QSignalSpy changes(&settings, &AppConfig::configChanged);
            settings.set(config::authToken, QStringLiteral("t0ken"));
            QCOMPARE(settings.get(config::authToken), QStringLiteral("t0ken"));
            QCOMPARE(changes.size(), 1);
            QCOMPARE(changes.takeFirst(), QVariantList{QStringLiteral("Auth/Token")});
            QVERIFY(!readFile().contains("t0ken"));
            settings.reset(config::authToken);
            QCOMPARE(settings.get(config::authToken), QString());
            QCOMPARE(changes.size(), 1);
            QCOMPARE(changes.takeFirst(), QVariantList{QStringLiteral("Auth/Token")});
            settings.set(config::authToken, QStringLiteral("again"));
        }
        QVERIFY(!readFile().contains("Token=again"));
        QCOMPARE(AppConfig(m_dir->path()).get(config::authToken), QString());
    }

    void aVolatileKeyInTheFileIsNotRead()
    {
        writeFile("[Auth]\nToken=fromfile\n");
        QCOMPARE(AppConfig(m_dir->path()).get(config::authToken), QString());
    }

    void secretsAreStoredAsCipherText()
    {
        const QString password = QStringLiteral("s3cret-密码");
        QByteArray first;
        {
            AppConfig settings(m_dir->path());
            settings.set(config::authPassword, password);
            first = storedLine("Password");
            settings.set(config::authPassword, password);
            QVERIFY(storedLine("Password") != first); // new salt and vector
            QCOMPARE(settings.get(config::authPassword), password);
            AppConfig other(m_dir->path());
            other.set(config::authPassword, QStringLiteral("newer"));
            QCOMPARE(settings.get(config::authPassword), QStringLiteral("newer"));
            settings.set(config::authPassword, password);
        }
        QVERIFY(!readFile().contains("s3cret"));
        QCOMPARE(AppConfig(m_dir->path()).get(config::authPassword), password);
        writeFile("[Auth]\nPassword=\"" + first.replace("\"", "") + "\"\n"); // as copied from another machine
        QCOMPARE(AppConfig(m_dir->path()).get(config::authPassword), password);
    }

    void resetEmptiesASecretInTheFile()
    {
        AppConfig settings(m_dir->path());
        settings.set(config::authRefreshToken, QStringLiteral("refresh"));
        QCOMPARE(settings.get(config::authRefreshToken), QStringLiteral("refresh"));
        const QSignalSpy changes(&settings, &AppConfig::configChanged);
        settings.reset(config::authRefreshToken);
        QCOMPARE(settings.get(config::authRefreshToken), QString());
        QCOMPARE(storedLine("RefreshToken"), QByteArray());
        QCOMPARE(changes.size(), 1);
    }

    void resetGivesTheDefault()
    {
        AppConfig settings(m_dir->path());
        settings.set(config::profileHomeAirport, QStringLiteral("ZSPD"));
        settings.reset(config::profileHomeAirport);
        QCOMPARE(settings.get(config::profileHomeAirport), QStringLiteral("ZBAA"));
    }

    void malformedValuesBecomeZero_data()
    {
        columns<QByteArray, bool, int, double>("value", "asBool", "asInt", "asReal");
        QTest::newRow("text") << QByteArray("abc") << false << 0 << 0.0;
        QTest::newRow("empty") << QByteArray() << false << 0 << 0.0;
        QTest::newRow("true in another case") << QByteArray("TRUE") << true << 0 << 0.0;
        QTest::newRow("number") << QByteArray("17") << true << 17 << 17.0;
        QTest::newRow("zero") << QByteArray("0") << false << 0 << 0.0;
        QTest::newRow("fraction") << QByteArray("2.5") << false << 0 << 2.5;
        QTest::newRow("exponent") << QByteArray("1e3") << false << 0 << 1000.0;
        QTest::newRow("beyond 32 bits") << QByteArray("4294967297") << false << 0 << 4294967297.0;
        QTest::newRow("not a number") << QByteArray("nan") << false << 0 << 0.0;
        QTest::newRow("infinite") << QByteArray("-inf") << false << 0 << 0.0;
        QTest::newRow("beyond a double") << QByteArray("1e999") << false << 0 << 0.0;
        QTest::newRow("list") << QByteArray("1, 2") << false << 0 << 0.0;
        QTest::newRow("invalid") << QByteArray("@Invalid()") << false << 0 << 0.0;
        QTest::newRow("bytes") << QByteArray("@ByteArray(\\xff\\xfe)") << false << 0 << 0.0;
        QTest::newRow("rectangle") << QByteArray("@Rect(1 2 3 4)") << false << 0 << 0.0;
        QTest::newRow("broken UTF-8") << QByteArray("\xff\xc0\x80") << false << 0 << 0.0;
        QTest::newRow("huge") << QByteArray(100'000, '9') << false << 0 << 0.0;
    }

    void malformedValuesBecomeZero()
    {
        QFETCH(const QByteArray, value);
        QFETCH(const bool, asBool);
        QFETCH(const int, asInt);
        QFETCH(const double, asReal);
        writeFile("[Auth]\nVatsim=" + value + "\n[XPlane]\nUDPPort=" + value + "\n[Voice]\nPttVolume=" + value + "\n");
        const AppConfig settings(m_dir->path());
        QCOMPARE(settings.get(config::authVatsim), asBool);
        QCOMPARE(settings.get(config::xplaneUdpPort), asInt);
        QCOMPARE(settings.get(config::voicePttVolume), asReal);
    }

    void damagedSecretsAreUseless_data()
    {
        QTest::addColumn<QByteArray>("stored");
        QTest::newRow("no Base64") << QByteArray("!!!");
        QTest::newRow("short") << QByteArray("c2hvcnQ=");
        QTest::newRow("31 bytes") << QByteArray(31, 'x').toBase64();
        QTest::newRow("32 bytes") << QByteArray(32, 'x').toBase64();
        QTest::newRow("ragged") << QByteArray(50, 'x').toBase64();
        QTest::newRow("list") << QByteArray("a, b");
    }

    void damagedSecretsAreUseless()
    {
        QFETCH(const QByteArray, stored);
        writeFile("[Auth]\nPassword=" + stored + "\n");
        QCOMPARE(AppConfig(m_dir->path()).get(config::authPassword), QString());
    }

    void pathLists_data()
    {
        QTest::addColumn<QStringList>("stored"); // %1: the test's folder, which holds a, "b c", "d,e" and the file f
        QTest::addColumn<QStringList>("read");
        const auto row = [](const char *tag, const QStringList &stored, const QStringList &read) {
            QTest::newRow(tag) << stored << read;
        };
        const QString a = QStringLiteral("%1/a");
        const QString b = QStringLiteral("%1/b c");
        row("empty list", {}, {});
        row("one", {a}, {a});
        row("one with a comma", {QStringLiteral("%1/d,e")}, {QStringLiteral("%1/d,e")});
        row("two, order kept", {b, a}, {b, a});
        row("a file counts as a path", {QStringLiteral("%1/f")}, {QStringLiteral("%1/f")});
        row("empty items go", {QString(), QStringLiteral("  "), a}, {a});
        row("only an empty item", {QString()}, {});
        row("missing folders go", {QStringLiteral("%1/gone"), a}, {a});
        row("second entries go", {a, b, a}, {a, b});
        row("second entries in another form go", {a, QStringLiteral(" %1/b c/../a/ "), QStringLiteral("%1//a/.")}, {a});
        row("an item that begins with @", {QStringLiteral("@Variant(x)"), a}, {a});
    }

    void pathLists()
    {
        QFETCH(QStringList, stored);
        QFETCH(QStringList, read);
        const QString root = QFileInfo(m_dir->path()).canonicalFilePath();
        for (const char *name : {"a", "b c", "d,e"})
            QVERIFY(QDir().mkpath(at(QLatin1String(name))));
        QFile file(at(QStringLiteral("f")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        stored.replaceInStrings(QStringLiteral("%1"), m_dir->path());
        read.replaceInStrings(QStringLiteral("%1"), root);
        {
            AppConfig settings(m_dir->path());
            settings.set(config::xplaneCsl, stored);
            QCOMPARE(settings.get(config::xplaneCsl), read);
        }
        QCOMPARE(AppConfig(m_dir->path()).get(config::xplaneCsl), read);
    }

    void storedPathsAreAllOfThem()
    {
        AppConfig settings(m_dir->path());
        QCOMPARE(settings.storedPaths(config::xplaneCsl).join(QString()), QString());
        QVERIFY(QDir().mkpath(at(QStringLiteral("real"))));
        QVERIFY(QFile::link(at(QStringLiteral("real")), at(QStringLiteral("link.lnk"))));
        const QStringList paths{at(QStringLiteral("link.lnk")), QStringLiteral("/nowhere"), at(QStringLiteral("real")),
                                QStringLiteral(" C:\\a\\..\\b "), at(QStringLiteral("real"))};
        settings.set(config::xplaneCsl, paths);
        QCOMPARE(settings.storedPaths(config::xplaneCsl), paths);
        QCOMPARE(AppConfig(m_dir->path()).storedPaths(config::xplaneCsl), paths);
    }

    void aLinkAndItsTargetAreOnePath()
    {
        QVERIFY(QDir().mkpath(at(QStringLiteral("real"))));
        if (!QFile::link(at(QStringLiteral("real")), at(QStringLiteral("link.lnk"))))
            QFAIL("the file system makes no links");
        AppConfig settings(m_dir->path());
        settings.set(config::xplaneCsl, {at(QStringLiteral("link.lnk")), at(QStringLiteral("real"))});
        QCOMPARE(settings.get(config::xplaneCsl).last(), QFileInfo(at(QStringLiteral("real"))).canonicalFilePath());
        QCOMPARE(settings.get(config::xplaneCsl).size(), 1);
    }

    void aFolderThatIsDeletedLeavesTheList()
    {
        QVERIFY(QDir().mkpath(at(QStringLiteral("a"))));
        AppConfig settings(m_dir->path());
        settings.set(config::msfsCustomMappingPaths2024, {at(QStringLiteral("a"))});
        QCOMPARE(settings.get(config::msfsCustomMappingPaths2024).size(), 1);
        QVERIFY(QDir().rmdir(at(QStringLiteral("a"))));
        QCOMPARE(settings.get(config::msfsCustomMappingPaths2024), QStringList());
    }

    void foldersAreDetectedOnlyForEmptyKeys_data()
    {
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<QStringList>("paths"); // both packages, both communities; %1: the simulator's own
        const QString own = QStringLiteral("%1 Simulator/sim");
        const QString own2024 = QStringLiteral("%1 Simulator 2024/sim");
        const QString community = QStringLiteral("/Community");
        QTest::newRow("none") << QByteArray() << QStringList{own, own2024, own + community, own2024 + community};
        QTest::newRow("two") << QByteArray("PackagesPath2020=moved\nCommunityPath2024=\"  \"\n")
                             << QStringList{QStringLiteral("moved"), own2024, own + community, own2024 + community};
        QTest::newRow("all but one") << QByteArray("PackagesPath2020=a\nPackagesPath2024=b\nCommunityPath2024=c\n")
                                     << QStringList{QStringLiteral("a"), QStringLiteral("b"), own + community,
                                                    QStringLiteral("c")};
    }

    void foldersAreDetectedOnlyForEmptyKeys()
    {
        QFETCH(const QByteArray, stored);
        QFETCH(QStringList, paths);
        qputenv("APPDATA", m_dir->path().toLocal8Bit());
        for (const char *edition : {"Microsoft Flight Simulator", "Microsoft Flight Simulator 2024"}) {
            const QString folder = at(QLatin1String(edition));
            QVERIFY(QDir().mkpath(folder + QStringLiteral("/sim/Community")));
            QFile file(folder + QStringLiteral("/UserCfg.opt"));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("InstalledPackagesPath \"" + folder.toUtf8() + "/sim\"\n");
        }
        writeFile("[MSFS]\n" + stored);
        const AppConfig settings(m_dir->path());
        paths.replaceInStrings(QStringLiteral("%1"), at(QStringLiteral("Microsoft Flight")));
        QCOMPARE(
            (QStringList{settings.get(config::msfsPackagesPath2020), settings.get(config::msfsPackagesPath2024),
                         settings.get(config::msfsCommunityPath2020), settings.get(config::msfsCommunityPath2024)}),
            paths);
        QCOMPARE(storedLine("CommunityPath2020"), paths.at(2).toUtf8());
    }

    void anUnwritableFileWorksInMemory()
    {
        QFile blocker(at(QStringLiteral("blocker")));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        AppConfig settings(at(QStringLiteral("blocker/inside"))); // no folder can be made inside a file
        const QSignalSpy changes(&settings, &AppConfig::configChanged);
        settings.set(config::xplaneUdpPort, 50000);
        settings.set(config::authPassword, QStringLiteral("pw"));
        QCOMPARE(settings.get(config::xplaneUdpPort), 50000);
        QCOMPARE(settings.get(config::authPassword), QStringLiteral("pw"));
        QCOMPARE(changes.size(), 2);
    }

    void binaryGarbageGivesDefaults()
    {
        QByteArray garbage;
        for (int i = 0; i < 20000; ++i)
            garbage += static_cast<char>((i * 31) ^ (i >> 3));
        writeFile(garbage);
        const AppConfig settings(m_dir->path());
        QCOMPARE(settings.get(config::xplaneUdpPort), 49000);
        QCOMPARE(settings.get(config::authVatsim), true);
    }

    void anEmptyPathListIsAnEmptyText()
    {
        AppConfig settings(m_dir->path());
        settings.set(config::xplaneCsl, QStringList{m_dir->path()});
        settings.set(config::xplaneCsl, QStringList());
        QCOMPARE(storedLine("CSL"), QByteArray());
        QCOMPARE(settings.get(config::xplaneCsl), QStringList());
    }

    void emptyPathListsAreRead_data()
    {
        QTest::addColumn<QByteArray>("stored");
        QTest::newRow("empty text") << QByteArray();
        QTest::newRow("as earlier versions wrote it") << QByteArray("@Invalid()");
    }

    void emptyPathListsAreRead()
    {
        QFETCH(const QByteArray, stored);
        writeFile("[XPlane]\nCSL=" + stored + "\n");
        QCOMPARE(AppConfig(m_dir->path()).get(config::xplaneCsl), QStringList());
    }

    void anOrdinaryStartWarnsOfNothing()
    {
        writeFile("[Auth]\nUsername=1001\n");
        QCOMPARE(AppConfig(m_dir->path()).startupWarning(), QString());
    }

    /// What crafted bytes of an object can do: end the process by their size or depth.
    void objectsAreReadAsText_data()
    {
        QTest::addColumn<QByteArray>("value");
        const QByteArray nested = "@Variant(" + QByteArray("\\0\\0\\0\\t\\0\\0\\0\\x1").repeated(200'000) + ")";
        QTest::newRow("too large") << QByteArray("@Variant(\\0\\0\\0\\t\\x7f\\xff\\xff\\xff)");
        QTest::newRow("too deep") << nested;
        QTest::newRow("escaped DOS line end before it") << "\\\r\n" + nested;
        QTest::newRow("the other line end before it") << "\\\n\r" + nested;
        QTest::newRow("number without digits before it") << "\\x" + nested;
        QTest::newRow("mark behind an escape") << "\\q\xEF\xBB\xBF" + nested;
    }

    void objectsAreReadAsText()
    {
        QFETCH(const QByteArray, value);
        const QByteArray text = "[Auth]\nUsername=\"" + value + "\"\n";
        writeFile(text);
        AppConfig settings(m_dir->path());
        QVERIFY(settings.get(config::authUsername).contains(u"@Variant("));
        QCOMPARE(settings.startupWarning(), QString());
        // And while the program runs: every set reads the file again.
        writeFile(text + "[Foreign]\nkey=" + value + "\n");
        settings.set(config::xplaneUdpPort, 50000);
        QCOMPARE(settings.get(config::xplaneUdpPort), 50000);
        QVERIFY(settings.get(config::authUsername).contains(u"@Variant("));
    }

    /// Cuts the file down to what the row tells, as a crash of the machine may.
    void whatTheFileLosesComesBack_data()
    {
        columns<QByteArray, int, int>("damaged", "lost", "port");
        QTest::newRow("everything") << QByteArray() << 30 << 50000;
        QTest::newRow("all but one key") << QByteArray("[XPlane]\nUDPPort=1234\n") << 29 << 1234;
        QTest::newRow("zeros") << QByteArray(4096, '\0') << 30 << 50000;
    }

    void whatTheFileLosesComesBack()
    {
        QFETCH(const QByteArray, damaged);
        QFETCH(const int, lost);
        QFETCH(const int, port);
        {
            AppConfig first(m_dir->path());
            first.set(config::xplaneUdpPort, 50000);
            first.set(config::authPassword, QStringLiteral("pw"));
            QCOMPARE(first.startupWarning(), QString());
        }
        QCOMPARE(AppConfig(m_dir->path()).startupWarning(), QString()); // copies the values
        writeFile(damaged);
        {
            const AppConfig settings(m_dir->path());
            QCOMPARE(settings.startupWarning(),
                     QStringLiteral("AppConfig: config.ini had lost %1 settings, which came back from config.ini.bak; "
                                    "the damaged file is kept as config.ini.damaged")
                         .arg(lost));
            QCOMPARE(settings.get(config::xplaneUdpPort), port);
            QCOMPARE(settings.get(config::authPassword), QStringLiteral("pw"));
        }
        QFile aside(configPath() + QStringLiteral(".damaged"));
        QVERIFY(aside.open(QIODevice::ReadOnly));
        QCOMPARE(aside.readAll(), damaged);
        aside.close(); // Windows deletes no open file
        AppConfig next(m_dir->path());
        QCOMPARE(next.startupWarning(), QString());
        QCOMPARE(next.get(config::xplaneUdpPort), port);
        next.set(config::authPassword, QString());
        QVERIFY(!aside.exists()); // nor does a secret stay there
    }

    void aFileThatIsGoneIsAFreshStart()
    {
        {
            AppConfig first(m_dir->path());
            first.set(config::xplaneUdpPort, 50000);
        }
        QCOMPARE(AppConfig(m_dir->path()).get(config::xplaneUdpPort), 50000);
        QVERIFY(QFile::remove(configPath()));
        const AppConfig settings(m_dir->path());
        QCOMPARE(settings.get(config::xplaneUdpPort), 49000);
        QCOMPARE(settings.startupWarning(), QString());
    }

    void aSecretThatWasTakenBackStaysAway()
    {
        {
            AppConfig first(m_dir->path());
            first.set(config::authPassword, QStringLiteral("pw"));
        }
        {
            AppConfig second(m_dir->path()); // copies the password
            second.reset(config::authPassword);
        }
        writeFile("[Voice]\n");
        const AppConfig settings(m_dir->path());
        QVERIFY(!settings.startupWarning().isEmpty());
        QCOMPARE(settings.get(config::authPassword), QString());
        QFile copy(configPath() + QStringLiteral(".bak"));
        QVERIFY(copy.open(QIODevice::ReadOnly | QIODevice::Text));
        QVERIFY(copy.readAll().contains("\nPassword=\n"));
    }
};

TARVO_TEST(AppConfigTest)
#include "AppConfigTest.moc"
