#include "diagnosis/ConfigCheck.h"
#include "ConfigCipher.h"
#include "ServiceEndpoints.h"
#include "diagnosis/TestSettings.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace tarvo;
using namespace tarvo::diagnosis;
using tarvo::test::freshSettings;

class ConfigCheckTest : public QObject
{
    Q_OBJECT

    StoredSettings m_fresh;

private slots:
    void initTestCase() { m_fresh = freshSettings(); }

    void aFreshFileIsWhole()
    {
        QCOMPARE(m_fresh.state, StoredSettings::State::Read);
        QCOMPARE(judgeSettings(m_fresh, configSecret()).mark, Mark::Good);
    }

    void aMissingFileIsNoFault()
    {
        const QTemporaryDir folder;
        const StoredSettings settings = readSettings(folder.path());
        QCOMPARE(settings.state, StoredSettings::State::Missing);
        QCOMPARE(judgeSettings(settings, configSecret()).mark, Mark::Good);
    }

    void aFolderInItsPlaceCannotBeRead()
    {
        const QTemporaryDir folder;
        QVERIFY(QDir(folder.path()).mkdir(u"config.ini"_qs));
        const StoredSettings settings = readSettings(folder.path());
        QCOMPARE(settings.state, StoredSettings::State::Unreadable);
        QCOMPARE(judgeSettings(settings, configSecret()).mark, Mark::Bad);
    }

    void lostSettingsAreNamed_data()
    {
        QTest::addColumn<bool>("copied");
        QTest::addColumn<QString>("advice");
        QTest::newRow("with a copy") << true << u"config.ini.bak"_qs;
        QTest::newRow("without") << false << u"默认值"_qs;
    }
    void lostSettingsAreNamed()
    {
        QFETCH(const bool, copied);
        QFETCH(const QString, advice);
        StoredSettings settings = m_fresh;
        settings.values.remove(u"Auth/Username"_qs);
        if (!copied)
            settings.copyValues.clear();
        const Finding finding = judgeSettings(settings, configSecret());
        QCOMPARE(finding.mark, Mark::Bad);
        QVERIFY2(finding.detail.endsWith(u"Auth/Username"_qs), qPrintable(finding.detail));
        QVERIFY2(finding.advice.contains(advice), qPrintable(finding.advice));
    }

    void aFileThatLostManyNamesAFew()
    {
        StoredSettings settings = m_fresh;
        const QStringList names = settings.values.keys();
        for (const QString &name : names.first(5))
            settings.values.remove(name);
        const QString all = judgeSettings(settings, configSecret()).detail;
        QVERIFY2(all.count(u'、') == 4 && !all.contains(u'等'), qPrintable(all));
        settings.values.clear();
        const Finding finding = judgeSettings(settings, configSecret());
        QVERIFY2(finding.detail.contains(u"等 %1 项"_qs.arg(config::storedKeys.size())), qPrintable(finding.detail));
    }

    void valuesAreLookedAt_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::addColumn<bool>("good");
        const QString port = u"XPlane/UDPPort"_qs;
        QTest::newRow("lowest port") << port << u"1"_qs << true;
        QTest::newRow("highest port") << port << u"65535"_qs << true;
        QTest::newRow("no port") << port << u"0"_qs << false;
        QTest::newRow("beyond all ports") << port << u"65536"_qs << false;
        QTest::newRow("a word for a number") << u"Voice/Driver"_qs << u"alsa"_qs << false;
        QTest::newRow("any number") << u"Voice/Driver"_qs << u"-3"_qs << true;
        QTest::newRow("yes as a digit") << u"Auth/Vatsim"_qs << u"1"_qs << true;
        QTest::newRow("a word for yes") << u"Auth/Vatsim"_qs << u"yes"_qs << false;
        QTest::newRow("a fraction") << u"Voice/MicGain"_qs << u"-2.5"_qs << true;
        QTest::newRow("not a number") << u"Voice/MicGain"_qs << u"nan"_qs << false;
        QTest::newRow("this machine") << u"XPlane/NetworkAddress"_qs << u"localhost"_qs << true;
        QTest::newRow("another machine") << u"XPlane/NetworkAddress"_qs << u"192.0.2.1"_qs << true;
        QTest::newRow("a name") << u"XPlane/NetworkAddress"_qs << u"flying-pc"_qs << false;
        QTest::newRow("no password") << u"Auth/Password"_qs << QString() << true;
        QTest::newRow("a password") << u"Auth/Password"_qs << cipher::encrypt(u"pass"_qs, configSecret()) << true;
        QTest::newRow("a password in clear text") << u"Auth/Password"_qs << u"practice"_qs << false;
        QTest::newRow("another build's token")
            << u"Auth/RefreshToken"_qs << cipher::encrypt(u"token"_qs, QByteArray(32, 'x')) << false;
    }
    void valuesAreLookedAt()
    {
        QFETCH(const QString, key);
        QFETCH(const QString, value);
        QFETCH(const bool, good);
        StoredSettings settings = m_fresh;
        settings.values[key] = value;
        const Finding finding = judgeSettings(settings, configSecret());
        QCOMPARE(finding.mark, good ? Mark::Good : Mark::Bad);
        QCOMPARE(finding.detail.contains(key), !good);
        QVERIFY(value.isEmpty() || !finding.detail.contains(value)); // it may be a secret
    }

    void foldersAreThoseThatAreNamed()
    {
        QCOMPARE(foldersOf(m_fresh), QStringList());
        StoredSettings settings = m_fresh;
        settings.values[u"MSFS/CommunityPath2024"_qs] = u" /a "_qs;
        settings.values[u"XPlane/CSL"_qs] = QStringList{u"/b"_qs, u"/a"_qs};
        QCOMPARE(foldersOf(settings), (QStringList{u"/a"_qs, u"/b"_qs}));
    }

    void foldersAreJudged()
    {
        const QStringList folders{u"/a"_qs, u"/b"_qs};
        QCOMPARE(judgeFolders({}, QStringList()), Findings());
        QCOMPARE(judgeFolders(folders, QStringList()).first().mark, Mark::Good);
        QVERIFY(judgeFolders(folders, QStringList{u"/b"_qs}).first().detail.endsWith(u"/b"_qs));
        QCOMPARE(judgeFolders(folders, std::nullopt).first().mark, Mark::Bad);
    }

    void allThreeFilesAreRead()
    {
        const QTemporaryDir folder;
        for (const char *name : {"config.ini", "config.ini.bak", "config.ini.damaged"}) {
            QFile file(folder.filePath(QLatin1StringView(name)));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("[S]\na=" + QByteArray(name)) > 0);
        }
        const StoredSettings settings = readSettings(folder.path());
        QCOMPARE(settings.values.value(u"S/a"_qs), QVariant(u"config.ini"_qs));
        QCOMPARE(settings.copyValues.value(u"S/a"_qs), QVariant(u"config.ini.bak"_qs));
        QCOMPARE(settings.damagedValues.value(u"S/a"_qs), QVariant(u"config.ini.damaged"_qs));
    }

    void secretsAreThoseOfAllFiles()
    {
        StoredSettings settings;
        const QString now = cipher::encrypt(u"pass\nword"_qs, configSecret());
        const QString before = cipher::encrypt(u"old pass"_qs, configSecret());
        settings.values[u"Auth/Password"_qs] = now;
        settings.values[u"Auth/Username"_qs] = u"1001"_qs;
        settings.copyValues[u"Auth/Password"_qs] = before;
        settings.damagedValues[u"Auth/RefreshToken"_qs] = cipher::encrypt(u"lost token"_qs, configSecret());
        settings.damagedValues[u"Auth/Password"_qs] = u"AbC="_qs; // cut: two bytes, which stand in many texts
        const QByteArrayList secrets = secretsOf(settings, configSecret());
        for (const QByteArray &secret :
             {now.toUtf8(), before.toUtf8(), QByteArray("pass\nword"), QByteArray("pass word"), QByteArray("old pass"),
              QByteArray("lost token"), configSecret(), QByteArray::fromBase64(now.toUtf8())})
            QVERIFY2(secrets.contains(secret), secret.constData());
        QVERIFY(!secrets.contains("1001") && !secrets.contains(QByteArray()));
        QVERIFY(!secrets.contains(QByteArray::fromBase64("AbC=")));
    }
};

TARVO_TEST(ConfigCheckTest)
#include "ConfigCheckTest.moc"
