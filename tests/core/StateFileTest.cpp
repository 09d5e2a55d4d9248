#include "StateFile.h"
#include "AppConfig.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace tarvo;

class StateFileTest : public QObject
{
    Q_OBJECT

    QString path() const { return m_folder->filePath(QStringLiteral("state.ini")); }
    QByteArray text() const
    {
        QFile file(path());
        return file.open(QIODevice::ReadOnly | QIODevice::Text) ? file.readAll() : QByteArray("no such file");
    }
    void write(const QByteArray &bytes) const
    {
        QFile file(path());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    std::unique_ptr<QTemporaryDir> m_folder;

private slots:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void withoutAFileEverythingIsAsAtTheBeginning()
    {
        const StateFile state(m_folder->path());
        QCOMPARE(state.get(state::windowPlace), QString());
        QVERIFY(!state.get(state::windowMaximized));
        QVERIFY(state.get(state::soundsOn));
        QVERIFY(!QFileInfo::exists(path()));
    }

    void whatIsSetIsOnTheDiskAtOnceAndThereAtTheNextStart()
    {
        StateFile state(m_folder->path());
        state.set(state::windowPlace, QStringLiteral("1,2,3,4"));
        state.set(state::soundsOn, false);
        QCOMPARE(text(), QByteArray("[Sounds]\nOn=false\n\n[Window]\nPlace=\"1,2,3,4\"\n"));
        const StateFile next(m_folder->path());
        QCOMPARE(next.get(state::windowPlace), QStringLiteral("1,2,3,4"));
        QVERIFY(!next.get(state::soundsOn));
    }

    void whatIsThereAlreadyIsNotWrittenAgain()
    {
        StateFile state(m_folder->path());
        state.set(state::soundsOn, true); // as it is without a file
        state.set(state::windowMaximized, false);
        QVERIFY(!QFileInfo::exists(path()));
    }

    void aDamagedFileGivesTheDefaults_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("zeros") << QByteArray(4096, '\0');
        QTest::newRow("no ini") << QByteArray("\xff\xfe]=[;");
        QTest::newRow("other words") << QByteArray("[Sounds]\nOn=perhaps\n[Window]\nMaximized=2\n");
        QTest::newRow("lists") << QByteArray("[Sounds]\nOn=false, false\n[Window]\nMaximized=true, true\n");
    }
    void aDamagedFileGivesTheDefaults()
    {
        QFETCH(const QByteArray, bytes);
        write(bytes);
        const StateFile state(m_folder->path());
        QVERIFY(state.get(state::soundsOn));
        QVERIFY(!state.get(state::windowMaximized));
        QCOMPARE(state.get(state::windowPlace), QString());
    }

    void whatCannotBeWrittenGoesOnInMemory()
    {
        QVERIFY(QDir().mkpath(path())); // a folder of that name
        StateFile state(m_folder->path());
        state.set(state::soundsOn, false);
        QVERIFY(!state.get(state::soundsOn));
    }

    void theSettingsDoNotMixWithIt()
    {
        AppConfig config(m_folder->path());
        QFile settings(m_folder->filePath(QStringLiteral("config.ini")));
        QVERIFY(settings.open(QIODevice::ReadOnly));
        const QByteArray before = settings.readAll();
        config.state().set(state::windowMaximized, true);
        settings.seek(0);
        QCOMPARE(settings.readAll(), before);
        QCOMPARE(text(), QByteArray("[Window]\nMaximized=true\n"));
    }
};

TARVO_TEST(StateFileTest)
#include "StateFileTest.moc"
