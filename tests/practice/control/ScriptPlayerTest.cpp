#include "practice/control/ScriptPlayer.h"

#include "Peers.h"
#include "support/ManualClock.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <memory>

using namespace tarvo::practice;
using namespace tarvo::test;

class ScriptPlayerTest : public QObject
{
    Q_OBJECT

    using State = ScriptPlayer::State;

    ManualClock m_clock;
    std::unique_ptr<PracticeNetwork> m_network;
    std::unique_ptr<ScriptPlayer> m_player;
    std::unique_ptr<FsdLineClient> m_pilot;
    QStringList m_played;

    void logIn(const QByteArray &callsign = "AB1")
    {
        m_pilot = std::make_unique<FsdLineClient>(m_network->fsd());
        m_pilot->logIn(callsign);
        TRY_COMPARE(m_network->fsd().callsigns().size(), 1);
        settle(*m_pilot, callsign);
    }
    void load(const QByteArray &text)
    {
        QVERIFY2(m_player->load(QString::fromUtf8(text)), qPrintable(m_player->error()));
    }
    void passSeconds(double seconds)
    {
        m_clock.advance(qRound64(seconds * 1000));
        m_player->step();
    }
    /// The plugin says that it got this.
    void pluginGets(const QString &name, const QVariantList &arguments)
    {
        emit m_network->xplane().plugin().messageReceived(name, arguments);
    }

private slots:
    void init()
    {
        m_network = std::make_unique<PracticeNetwork>(quietSettings(), m_clock);
        QVERIFY2(m_network->start(), qPrintable(m_network->errorString()));
        m_player = std::make_unique<ScriptPlayer>(*m_network, m_clock);
        m_played.clear();
        connect(m_player.get(), &ScriptPlayer::played, this, [this](const QString &text) { m_played << text; });
    }

    void cleanup()
    {
        m_player.reset();
        m_pilot.reset();
        m_network.reset();
    }

    void beginsWhenTheFirstClientHasLoggedIn()
    {
        load("0 text text=hello\n1 text text=later\n");
        QCOMPARE(m_player->state(), State::Awaiting);
        passSeconds(10);
        QCOMPARE(m_player->timeMs(), 0);
        QVERIFY(m_played.isEmpty());
        logIn();
        TRY_VERIFY(m_pilot->got("#TMSERVER:AB1:hello\r\n"));
        QCOMPARE(m_player->state(), State::Playing);
        QCOMPARE(m_player->pilot(), QStringLiteral("AB1"));
        passSeconds(0.999);
        QCOMPARE(m_played.size(), 1);
        passSeconds(0.001);
        QCOMPARE(m_played.size(), 2);
        QCOMPARE(m_player->state(), State::Finished);
    }

    void beginsAtOnceWhenSomebodyIsThere()
    {
        logIn();
        load("0 text text=hello\n");
        m_player->step();
        TRY_VERIFY(m_pilot->got("#TMSERVER:AB1:hello\r\n"));
        QCOMPARE(m_player->state(), State::Finished);
    }

    void beginsAtOnceWhenItSaysSo()
    {
        load("start now\n0 pause\n0.5 pause on=0\n");
        m_player->step();
        QVERIFY(m_network->xplane().isPaused());
        passSeconds(0.5);
        QVERIFY(!m_network->xplane().isPaused());
    }

    void playsEverythingAtItsTimeAndInOrder()
    {
        logIn();
        load("0 text text=a\n0 text text=b\n1 text text=c\n+0.5 text text=d\n3 text text=e\n");
        QSignalSpy finished(m_player.get(), &ScriptPlayer::finished);
        passSeconds(0);
        QCOMPARE(m_played.size(), 2);
        passSeconds(1.4);
        QCOMPARE(m_played.size(), 3);
        passSeconds(0.1);
        QCOMPARE(m_played.size(), 4);
        QCOMPARE(finished.size(), 0);
        passSeconds(100);
        QCOMPARE(finished.size(), 1);
        const QStringList expected{
            QStringLiteral("text callsign=AB1 text=a"), QStringLiteral("text callsign=AB1 text=b"),
            QStringLiteral("text callsign=AB1 text=c"), QStringLiteral("text callsign=AB1 text=d"),
            QStringLiteral("text callsign=AB1 text=e")};
        QCOMPARE(m_played, expected);
    }

    void putsThePilotsCallsignIn()
    {
        logIn("CCA1331");
        load("0 line line=\"#TMAB9:{pilot}:{pilot}, hello: {you}\"\n0 text callsign={pilot} text=x\n");
        m_player->step();
        TRY_VERIFY(m_pilot->got("#TMAB9:CCA1331:CCA1331, hello: {you}\r\n"));
        TRY_VERIFY(m_pilot->got("#TMSERVER:CCA1331:x\r\n"));
    }

    void aWaitHoldsTheScriptAndItsTime()
    {
        logIn();
        load("1 text text=a\n2 wait-for line=\"#TMAB1:SERVER:go\"\n3 text text=b\n");
        passSeconds(20);
        QCOMPARE(m_played.size(), 1);
        QCOMPARE(m_player->timeMs(), 2000);
        QVERIFY(m_player->isWaiting());
        m_pilot->send("#TMAB1:SERVER:g");
        settle(*m_pilot, "AB1");
        QCOMPARE(m_player->timeMs(), 2000);
        m_pilot->send("#TMAB1:SERVER:go on");
        TRY_COMPARE(m_played.size(), 2);
        QVERIFY(!m_player->isWaiting());
        QCOMPARE(m_player->timeMs(), 2000);
        passSeconds(0.999);
        QCOMPARE(m_played.size(), 2);
        passSeconds(0.001);
        QCOMPARE(m_played.size(), 3);
        QCOMPARE(m_player->state(), State::Finished);
    }

    void waitsBesideEachOtherTakeAnyOrder()
    {
        logIn();
        load("0 text text=a\n0 wait-for line=$PIAB1:SERVER:x\n0 wait-for line=$PIAB1:SERVER:y\n");
        m_player->step();
        m_pilot->send("$PIAB1:SERVER:y");
        m_pilot->send("$PIAB1:SERVER:x");
        TRY_COMPARE(m_player->state(), State::Finished);
    }

    void eachThingHeardEndsOneWait()
    {
        logIn();
        load("0 wait-for line=$PIAB1:SERVER:x\n0 wait-for line=$PIAB1:SERVER:x\n");
        m_player->step();
        m_pilot->send("$PIAB1:SERVER:x");
        TRY_COMPARE(m_played.size(), 1);
        settle(*m_pilot, "AB1");
        QCOMPARE(m_player->state(), State::Playing);
        m_pilot->send("$PIAB1:SERVER:x");
        TRY_COMPARE(m_player->state(), State::Finished);
    }

    void aWaitKnowsWhatCameWhileTheEventsBeforeItWerePlayed()
    {
        logIn();
        load("0 text text=a\n1 text text=b\n2 wait-for line=$PIAB1:SERVER:x\n");
        m_player->step();
        m_pilot->send("$PIAB1:SERVER:x");
        settle(*m_pilot, "AB1");
        passSeconds(1);
        passSeconds(1);
        QCOMPARE(m_player->state(), State::Finished);
    }

    void whatCameBeforeTheLastWaitsIsForgotten()
    {
        logIn();
        load("0 wait-for line=$PIAB1:SERVER:y\n0 text text=a\n0 wait-for line=$PIAB1:SERVER:x\n");
        m_player->step();
        m_pilot->send("$PIAB1:SERVER:x");
        m_pilot->send("$PIAB1:SERVER:y");
        TRY_COMPARE(m_played.size(), 2);
        settle(*m_pilot, "AB1");
        m_player->step();
        QCOMPARE(m_played.size(), 2);
        m_pilot->send("$PIAB1:SERVER:x");
        TRY_COMPARE(m_player->state(), State::Finished);
    }

    void waitsForOneClientAlone()
    {
        logIn();
        FsdLineClient other(m_network->fsd());
        other.logIn("XY2", "1002");
        TRY_COMPARE(m_network->fsd().callsigns().size(), 2);
        load("0 wait-for line=$PI from={pilot}\n");
        m_player->step();
        settle(other, "XY2");
        QCOMPARE(m_player->state(), State::Playing);
        settle(*m_pilot, "AB1");
        TRY_COMPARE(m_player->state(), State::Finished);
    }

    void waitsForTheComingAndGoingOfOthers()
    {
        logIn();
        load("0 wait-for login=XY2\n0 wait-for left=XY2\n");
        m_player->step();
        FsdLineClient other(m_network->fsd());
        other.logIn("XY2", "1002");
        TRY_COMPARE(m_played.size(), 1);
        other.send("#DPXY2:1002");
        TRY_COMPARE(m_player->state(), State::Finished);
    }

    void waitsForTheSimulator()
    {
        logIn();
        load("0 wait-for plugin=\"DEL CCA981 Stale\"\n0 wait-for plugin=\"ACCONF CCA981 nil true\"\n");
        m_player->step();
        pluginGets(QStringLiteral("DEL"), {QStringLiteral("CCA981"), QStringLiteral("Deleted")});
        m_player->step();
        QCOMPARE(m_played.size(), 0);
        pluginGets(QStringLiteral("ACCONF"), {QStringLiteral("CCA981"), QVariant(), true, QVariant()});
        pluginGets(QStringLiteral("DEL"), {QStringLiteral("CCA981"), QStringLiteral("Stale")});
        TRY_COMPARE(m_player->state(), State::Finished);
    }

    void waitsForTheWholeOfIt()
    {
        logIn();
        load("0 wait-for plugin=\"STATION_CALLSIGN 1 \" exactly=1\n0 wait-for plugin=STATION exactly=0\n");
        m_player->step();
        pluginGets(QStringLiteral("STATION_CALLSIGN"), {1, QStringLiteral("ZBAA_TWR")});
        m_player->step();
        QCOMPARE(m_played.size(), 0);
        pluginGets(QStringLiteral("STATION_CALLSIGN"), {1, QString()});
        TRY_COMPARE(m_player->state(), State::Finished);
    }

    void whatMustNotBeHeard_data()
    {
        QTest::addColumn<QByteArray>("arguments");
        QTest::addColumn<bool>("passes");
        QTest::newRow("its beginning was") << QByteArray("line=$PIAB1:SERVER:b") << false;
        QTest::newRow("it was") << QByteArray("line=$PIAB1:SERVER:bad exactly=1") << false;
        QTest::newRow("something longer was") << QByteArray("line=$PIAB1:SERVER:b exactly=1") << true;
        QTest::newRow("another said it") << QByteArray("line=$PIAB1:SERVER:bad from=XY2") << true;
        QTest::newRow("a wait took it") << QByteArray("line=$PIAB1:SERVER:x") << true;
        QTest::newRow("it was before the event before") << QByteArray("line=$PIAB1:SERVER:old") << true;
    }

    void whatMustNotBeHeard()
    {
        QFETCH(QByteArray, arguments);
        QFETCH(bool, passes);
        logIn();
        load("0 wait-for line=$PIAB1:SERVER:y\n0 text text=a\n0 wait-for line=$PIAB1:SERVER:x\n0 not-heard " +
             arguments + "\n0 text text=b\n");
        m_player->step();
        m_pilot->send("$PIAB1:SERVER:old");
        m_pilot->send("$PIAB1:SERVER:y");
        TRY_VERIFY(m_pilot->got("#TMSERVER:AB1:a\r\n"));
        m_pilot->send("$PIAB1:SERVER:bad");
        m_pilot->send("$PIAB1:SERVER:x");
        TRY_COMPARE(m_player->state(), passes ? State::Finished : State::Failed);
        if (!passes)
            QCOMPARE(m_player->error(), QStringLiteral("script:4: not-heard: it was heard"));
        settle(*m_pilot, "AB1");
        QCOMPARE(m_pilot->got("#TMSERVER:AB1:b\r\n"), passes);
    }

    void waitsNoLongerThanItMay_data()
    {
        QTest::addColumn<QByteArray>("timeout");
        QTest::addColumn<double>("seconds");
        QTest::newRow("by itself") << QByteArray() << 30.0;
        QTest::newRow("told") << QByteArray(" timeout=2.5") << 2.5;
    }

    void waitsNoLongerThanItMay()
    {
        QFETCH(QByteArray, timeout);
        QFETCH(double, seconds);
        logIn();
        load("5 wait-for line=x" + timeout + "\n6 text text=a\n");
        QSignalSpy failed(m_player.get(), &ScriptPlayer::failed);
        passSeconds(5);
        passSeconds(seconds - 0.001);
        QCOMPARE(m_player->state(), State::Playing);
        passSeconds(0.001);
        QCOMPARE(m_player->state(), State::Failed);
        QCOMPARE(failed.size(), 1);
        QVERIFY2(m_player->error().startsWith(QStringLiteral("script:1: wait-for: nothing was heard within ")),
                 qPrintable(m_player->error()));
        passSeconds(100);
        QVERIFY(m_played.isEmpty());
    }

    void endsWhenAnEventCannotBeDone()
    {
        logIn();
        load("0 text text=a\n\n0 kill callsign=NOBODY\n0 text text=b\n");
        QSignalSpy failed(m_player.get(), &ScriptPlayer::failed);
        m_player->step();
        QCOMPARE(m_player->state(), State::Failed);
        QCOMPARE(failed.size(), 1);
        QVERIFY2(m_player->error().startsWith(QStringLiteral("script:3: kill: ")), qPrintable(m_player->error()));
        QCOMPARE(m_played.size(), 1);
    }

    void refusesAScriptThatItCannotPlay_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("error");
        const auto row = [](const char *name, const char *text, const char *error) {
            QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(error);
        };
        row("malformed", "0 do what", "a.script:1: \"what\" is no key=value");
        row("unknown verb", "0 pause\n0 explode", "a.script:2: explode: there is no such verb");
        row("wait for nothing", "0 wait-for", "a.script:1: wait-for: listens for one of line, plugin, login and left");
        row("wait for two", "0 wait-for line=a plugin=b",
            "a.script:1: wait-for: listens for one of line, plugin, login and left");
        row("nothing not heard", "0 not-heard from=x",
            "a.script:1: not-heard: listens for one of line, plugin, login and left");
        row("not heard in time", "0 not-heard line=x timeout=3", "a.script:1: not-heard: doesn't know timeout");
        row("exactly of letters", "0 wait-for line=a exactly=yes", "a.script:1: wait-for: exactly is 1 or 0");
        row("wait otherwise", "0 wait-for line=a lien=b", "a.script:1: wait-for: doesn't know lien");
        row("timeout of letters", "0 wait-for line=a timeout=x",
            "a.script:1: wait-for: timeout is no number of seconds");
        row("no timeout", "0 wait-for line=a timeout=0", "a.script:1: wait-for: timeout is no number of seconds");
    }

    void refusesAScriptThatItCannotPlay()
    {
        QFETCH(QString, text);
        QFETCH(QString, error);
        logIn();
        QVERIFY(!m_player->load(text, QStringLiteral("a.script")));
        QCOMPARE(m_player->error(), error);
        QCOMPARE(m_player->state(), State::Failed);
        m_player->step();
        QVERIFY(m_played.isEmpty());
        load("0 text text=a"); // a good one plays after a bad one
        m_player->step();
        QCOMPARE(m_player->state(), State::Finished);
        QVERIFY(m_player->error().isEmpty());
    }

    void aScriptUnderWayGivesWay()
    {
        logIn();
        load("0 wait-for line=x\n0 text text=a\n");
        m_player->step();
        load("1 text text=b\n");
        passSeconds(1);
        QCOMPARE(m_played, QStringList{QStringLiteral("text callsign=AB1 text=b")});
    }

    void readsAFile()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("x.script"));
        QVERIFY(!m_player->loadFile(path));
        QVERIFY2(m_player->error().startsWith(path), qPrintable(m_player->error()));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("0 text text=\xe4\xbd\xa0\n0 text=x\n");
        file.close();
        QVERIFY(!m_player->loadFile(path));
        QCOMPARE(m_player->error(), path + QStringLiteral(":2: no verb after the time"));
    }

    void everyScriptThatComesWithItIsGood()
    {
        const QDir folder(QStringLiteral(TARVO_SCRIPTS));
        const QStringList names = folder.entryList({QStringLiteral("*.script")});
        QVERIFY(names.size() >= 3);
        for (const QString &name : names)
            QVERIFY2(m_player->loadFile(folder.filePath(name)), qPrintable(m_player->error()));
    }
};

TARVO_TEST(ScriptPlayerTest)
#include "ScriptPlayerTest.moc"
