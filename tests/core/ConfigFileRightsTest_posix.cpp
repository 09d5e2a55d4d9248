#include "AppConfig.h"
#include "DataFolders.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using tarvo::AppConfig;

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

    void nobodyElseReadsTheCopies()
    {
        const QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("config.ini"));
        {
            const AppConfig settings(dir.path());
        }
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther));
        file.close();
        const AppConfig settings(dir.path()); // finds everything lost
        for (const char *copy : {".bak", ".damaged"}) {
            const QFile::Permissions rights = QFile::permissions(path + QLatin1String(copy));
            QVERIFY2(rights & QFile::ReadOwner, copy);
            QCOMPARE(rights & (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther),
                     QFile::Permissions());
        }
    }

    void nobodyElseReadsSettingsThatComeAlong()
    {
        const QTemporaryDir program;
        const QTemporaryDir own;
        QFile file(program.filePath(QStringLiteral("config.ini")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther));
        tarvo::makeDataFolders({.root = own.path(), .readOnly = {}, .settingsFrom = program.path()});
        const QFile::Permissions rights = QFile::permissions(own.filePath(QStringLiteral("config.ini")));
        QVERIFY(rights & QFile::ReadOwner);
        QCOMPARE(rights & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    }
};

TARVO_TEST(ConfigFileRightsTest)
#include "ConfigFileRightsTest_posix.moc"
