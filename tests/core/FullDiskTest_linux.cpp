#include "AppConfig.h"
#include "Logging.h"
#include "support/LogCapture.h"
#include "support/SmallDisk.h"
#include "support/TestRegistry.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <memory>
#include <utility>

using namespace tarvo;
using tarvo::test::LogCapture;
using tarvo::test::SmallDisk;

namespace {

const QString cannotBeWritten =
    QStringLiteral("AppConfig: config.ini can't be written; what is set stays in memory until it can be");
const QString canBeWrittenAgain =
    QStringLiteral("AppConfig: config.ini can be written again; nothing that was set meanwhile is lost");
const QString longText(8000, u'p'); // more than an older file's last page may have room for

} // namespace

/// A disk that is full, or can't be written: what was there stays, what is set works in memory, and it is told.
class FullDiskTest : public QObject
{
    Q_OBJECT

    QByteArray contents(const char *name) const
    {
        QFile file(m_disk->filePath(QString::fromLatin1(name)));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
    }
    QStringList names() const { return QDir(m_disk->path()).entryList(QDir::Files | QDir::Hidden); }
    /// Makes settings, and what a good start leaves of them.
    void startOnce() const
    {
        AppConfig(m_disk->path()).set(config::profileRealname, QStringLiteral("before"));
        const AppConfig next(m_disk->path());
    }

    std::unique_ptr<SmallDisk> m_disk;

private slots:
    void init()
    {
        m_disk = std::make_unique<SmallDisk>();
        if (!m_disk->isThere())
            QSKIP("nothing may be mounted here");
    }

    void settingsOutliveAFullDisk()
    {
        startOnce();
        AppConfig settings(m_disk->path());
        const QByteArray before = contents("config.ini");
        QVERIFY(m_disk->fill());
        const QStringList files = names();
        LogCapture log;
        settings.set(config::profileRealname, longText);
        settings.set(config::authPassword, QStringLiteral("secret"));
        QVERIFY(!settings.isSaved());
        QCOMPARE(contents("config.ini"), before);
        QCOMPARE(names(), files); // nothing half written either
        QCOMPARE(settings.get(config::profileRealname), longText);
        QCOMPARE(settings.get(config::authPassword), QStringLiteral("secret"));
        QCOMPARE(log.texts(), QStringList{cannotBeWritten});

        QVERIFY(m_disk->clear());
        settings.set(config::authRememberPassword, true);
        QVERIFY(settings.isSaved());
        QCOMPARE(log.texts(), (QStringList{cannotBeWritten, canBeWrittenAgain}));
        QVERIFY(contents("config.ini").contains(longText.toLatin1()));
        QVERIFY(contents("config.ini").contains("RememberPassword=true"));
    }

    void aFirstStartOnAFullDiskWorksInMemory()
    {
        QVERIFY(m_disk->fill());
        LogCapture log;
        AppConfig settings(m_disk->path());
        QVERIFY(!settings.isSaved());
        settings.set(config::profileRealname, longText);
        QCOMPARE(settings.get(config::profileRealname), longText);
        QCOMPARE(log.texts(), QStringList{cannotBeWritten});
        QCOMPARE(names(), QStringList{QStringLiteral("filler")});
    }

    void theCopyOutlivesADamagedFileOnAFullDisk()
    {
        startOnce();
        const QByteArray copy = contents("config.ini.bak");
        QVERIFY(copy.contains("before"));
        QFile file(m_disk->filePath(QStringLiteral("config.ini")));
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.close();
        QVERIFY(m_disk->fill());
        LogCapture log;
        const AppConfig settings(m_disk->path());
        QCOMPARE(settings.get(config::profileRealname), QStringLiteral("before"));
        QVERIFY(!settings.startupWarning().isEmpty());
        QVERIFY(!settings.isSaved());
        QCOMPARE(contents("config.ini.bak"), copy);
    }

    void theCopyOutlivesANewOneOnAFullDisk()
    {
        startOnce();
        const QByteArray copy = contents("config.ini.bak");
        AppConfig(m_disk->path()).set(config::profileRealname, QStringLiteral("after"));
        QVERIFY(m_disk->fill());
        const AppConfig next(m_disk->path());
        QCOMPARE(next.get(config::profileRealname), QStringLiteral("after"));
        QCOMPARE(contents("config.ini.bak"), copy);
    }

    void whatIsRememberedOutlivesAFullDisk()
    {
        StateFile state(m_disk->path());
        state.set(state::soundsOn, false);
        const QByteArray before = contents("state.ini");
        QVERIFY(m_disk->fill());
        LogCapture log;
        state.set(state::windowPlace, longText);
        state.set(state::windowMaximized, true);
        QCOMPARE(contents("state.ini"), before);
        QCOMPARE(state.get(state::windowPlace), longText);
        QCOMPARE(log.texts(),
                 QStringList{QStringLiteral("state.ini can't be written; what it was to remember may be lost")});
        QVERIFY(m_disk->clear());
        state.set(state::windowMaximized, false);
        QVERIFY(contents("state.ini").contains(longText.toLatin1()));
    }

    void theLogKeepsItsLinesAndTellsHowManyItLost()
    {
        constexpr int lines = 400;
        const QtMessageHandler previous = qInstallMessageHandler(nullptr);
        logging::installHandler();
        logging::openLogFile(m_disk->filePath(QStringLiteral("logs/a.log")));
        qInfo("first");
        const QByteArray before = contents("logs/a.log");
        const bool filled = m_disk->fill();
        for (int i = 0; i < lines; ++i)
            qInfo("%d %s", i, QByteArray(100, 'y').constData());
        const QByteArray full = contents("logs/a.log");
        const bool cleared = m_disk->clear();
        qInfo("last");
        qInstallMessageHandler(previous);
        QVERIFY(filled && cleared);
        QVERIFY(before.endsWith("first\n"));
        QVERIFY(full.startsWith(before));
        const QByteArray after = contents("logs/a.log");
        QVERIFY(after.startsWith(full)); // a line that was cut goes on
        QVERIFY(after.endsWith("last\n"));
        const QRegularExpressionMatch lost =
            QRegularExpression(QStringLiteral("\\| WARN  \\| Logging.cpp:\\d+ - (\\d+) lines were lost here"))
                .match(QString::fromUtf8(after));
        QVERIFY(lost.hasMatch());
        QCOMPARE(after.count('\n') + lost.captured(1).toInt(), lines + 3);
        QCOMPARE(after.count(" | INFO  | "), after.count('\n') - 1);
    }

    void aHomeThatIsOnlyReadIsReadAndTold()
    {
        startOnce();
        AppConfig(m_disk->path()).state().set(state::soundsOn, false);
        const QByteArray before = contents("config.ini");
        QVERIFY(m_disk->lock());
        LogCapture log;
        AppConfig settings(m_disk->path());
        QCOMPARE(settings.get(config::profileRealname), QStringLiteral("before"));
        QVERIFY(!settings.state().get(state::soundsOn));
        QVERIFY(settings.isSaved());
        settings.set(config::profileRealname, QStringLiteral("after"));
        QVERIFY(!settings.isSaved());
        QCOMPARE(settings.get(config::profileRealname), QStringLiteral("after"));
        settings.state().set(state::soundsOn, true);
        QVERIFY(settings.state().get(state::soundsOn));
        QCOMPARE(log.texts(QtWarningMsg).size(), 2);
        QCOMPARE(contents("config.ini"), before);
    }

    void aHomeThatIsOnlyReadTakesNoLog()
    {
        QVERIFY(m_disk->lock());
        logging::openLogFile(m_disk->filePath(QStringLiteral("logs/a.log"))); // and doesn't end the program
        QVERIFY(names().isEmpty());
    }
};

TARVO_TEST(FullDiskTest)
#include "FullDiskTest_linux.moc"
