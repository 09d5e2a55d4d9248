#include "AppConfig.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

using tarvo::AppConfig;

namespace {

/// The rights of an ordinary user for as long as it lives: the superuser may write into any folder.
class OrdinaryUser
{
public:
    OrdinaryUser() : m_user(geteuid())
    {
        if (m_user == 0 && seteuid(65534) != 0)
            qFatal("the superuser's rights can't be dropped");
    }
    ~OrdinaryUser()
    {
        if (m_user == 0 && seteuid(0) != 0)
            qFatal("the superuser's rights can't be taken back");
    }
    OrdinaryUser(const OrdinaryUser &) = delete;
    OrdinaryUser &operator=(const OrdinaryUser &) = delete;

private:
    uid_t m_user;
};

} // namespace

/// On Windows the folder decides who reads the file.
class ConfigFileRightsTest : public QObject
{
    Q_OBJECT

private slots:
    void nobodyElseReadsTheFile_data()
    {
        QTest::addColumn<bool>("exists");
        QTest::newRow("new file") << false;
        QTest::newRow("file that all may read") << true;
    }

    void nobodyElseReadsTheFile()
    {
        QFETCH(const bool, exists);
        const QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("config.ini"));
        if (exists) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther));
        }
        AppConfig settings(dir.path());
        settings.set(tarvo::config::authPassword, QStringLiteral("pw"));
        const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
        QCOMPARE(QFile::permissions(path) & others, QFile::Permissions());
        QVERIFY(QFile::permissions(path) & QFile::WriteOwner);
    }

    void aHarmfulFileThatCannotBeMovedIsNotRead()
    {
        const QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("config.ini"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        const QByteArray text = "[Auth]\nUsername=\"@Variant(x)\"\n[XPlane]\nUDPPort=1234\n";
        file.write(text);
        file.close();
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
        QVERIFY(QFile::setPermissions(dir.path(), QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup |
                                                      QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther));
        {
            const OrdinaryUser user;
            AppConfig settings(dir.path());
            QCOMPARE(settings.startupWarning(),
                     QStringLiteral("AppConfig: config.ini holds a serialized object and is not used"));
            QCOMPARE(settings.get(tarvo::config::xplaneUdpPort), 49000);
            settings.set(tarvo::config::xplaneUdpPort, 50000);
            QCOMPARE(settings.get(tarvo::config::xplaneUdpPort), 50000);
        }
        QVERIFY(QFile::setPermissions(dir.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), text);
    }

    void nobodyElseReadsWhatWasSetAside()
    {
        const QTemporaryDir dir;
        QFile file(dir.filePath(QStringLiteral("config.ini")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[Auth]\nUsername=@Variant(x)\n");
        QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther));
        file.close();
        const AppConfig settings(dir.path());
        const QFile::Permissions rights = QFile::permissions(dir.filePath(QStringLiteral("config.ini.damaged")));
        QVERIFY(rights & QFile::ReadOwner);
        QCOMPARE(rights & (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther),
                 QFile::Permissions());
    }
};

TARVO_TEST(ConfigFileRightsTest)
#include "ConfigFileRightsTest_posix.moc"
