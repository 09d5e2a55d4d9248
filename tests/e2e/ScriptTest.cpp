#include "e2e/Client.h"
#include "practice/control/ScriptPlayer.h"
#include "support/ManualClock.h"
#include "support/TestRegistry.h"

using namespace tarvo;
using namespace tarvo::test;
using tarvo::practice::ScriptPlayer;

namespace {
/// A client at Beijing, for whom a script is played as fast as he answers.
struct ScriptRun
{
    ManualClock clock; ///< of the controllers' list
    Network network;
    Client client;
    ManualClock scriptClock;
    ScriptPlayer player{network.practice, scriptClock};
    QStringList texts; ///< that the client got: private, radio, broadcast, from the server, SELCAL; each after its kind
    QStringList played;

    explicit ScriptRun(Protocol protocol) : client(network, protocol)
    {
        QObject::connect(&player, &ScriptPlayer::played, &player, [this](const QString &text) { played << text; });
    }

    bool open(const QString &script)
    {
        if (!network.started || !player.loadFile(QStringLiteral(TARVO_SCRIPTS "/%1.script").arg(script)) ||
            !client.signIn())
            return false;
        client.controllers = std::make_shared<manager::ControllerManager>(client.manager, clock);
        listen();
        return client.activateXPlane() && client.connectPilot() &&
               test::waitFor([this] { return !client.events.isEmpty(); });
    }

    /// Plays it until it is over. What went wrong, or nothing.
    QString play(const std::function<void()> &meanwhile = [] {})
    {
        const bool over = QTest::qWaitFor(
            [&] {
                meanwhile();
                client.fire("slowTimer"); // which wouldn't go off often by itself
                if (!player.isWaiting())
                    scriptClock.advance(100);
                player.step();
                return player.state() == ScriptPlayer::State::Finished || player.state() == ScriptPlayer::State::Failed;
            },
            2 * patienceMs);
        if (over)
            return player.error();
        return QStringLiteral("held after \"%1\"").arg(played.value(played.size() - 1));
    }

private:
    void listen()
    {
        using manager::NetworkManager;
        const NetworkManager *manager = client.manager.get();
        QObject::connect(manager, &NetworkManager::privateMessageReceived, &player,
                         [this](const QString &from, const QString &text) {
                             texts << QStringLiteral("private %1: %2").arg(from, text);
                         });
        QObject::connect(manager, &NetworkManager::radioMessageReceived, &player,
                         [this](const network::RadioMessageReceived &radio) {
                             texts << QStringLiteral("radio %1: %2").arg(radio.from, radio.message);
                         });
        QObject::connect(manager, &NetworkManager::broadcastMessageReceived, &player,
                         [this](const QString &from, const QString &text) {
                             texts << QStringLiteral("broadcast %1: %2").arg(from, text);
                         });
        QObject::connect(manager, &NetworkManager::serverMessageReceived, &player,
                         [this](const QString &text) { texts << QStringLiteral("server: %1").arg(text); });
        QObject::connect(manager, &NetworkManager::selcalAlertReceived, &player,
                         [this](const QString &from, const QList<uint> &frequencies) {
                             texts << QStringLiteral("selcal %1 on %2").arg(from).arg(frequencies.size());
                         });
    }
};
} // namespace

class ScriptTest : public QObject
{
    Q_OBJECT

private slots:
    void isPlayedToItsEnd_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<Protocol>("protocol");
        QTest::newRow("a pilot's life, classic") << QStringLiteral("pilot") << Protocol::Classic;
        QTest::newRow("a pilot's life, by token") << QStringLiteral("pilot") << Protocol::Token;
        QTest::newRow("controllers") << QStringLiteral("controllers") << Protocol::Classic;
    }

    void isPlayedToItsEnd()
    {
        QFETCH(QString, script);
        QFETCH(Protocol, protocol);
        ScriptRun run(protocol);
        QVERIFY2(run.open(script), qPrintable(run.player.error()));
        const QString error = run.play();
        QVERIFY2(error.isEmpty(), qPrintable(error));
        QVERIFY(run.network.practice.xplane().plugin().aircraft().isEmpty());
    }

    void textsArrive()
    {
        ScriptRun run(Protocol::Classic);
        QVERIFY2(run.open(QStringLiteral("text")), qPrintable(run.player.error()));
        const QString error = run.play();
        QVERIFY2(error.isEmpty(), qPrintable(error));
        const QStringList expected{u"server: Welcome to the practice network."_qs,
                                   u"private ZBAA_TWR: Stand by: traffic on final"_qs,
                                   u"radio ZBAA_TWR: Wind calm"_qs,
                                   u"radio ZBAA_TWR: QNH 1013"_qs,
                                   u"radio ZBAA_TWR: All stations"_qs,
                                   u"radio ZBAA_TWR: AB1, cleared for take-off"_qs,
                                   u"selcal ZBAA_TWR on 1"_qs,
                                   u"selcal ZBAA_TWR on 2"_qs,
                                   u"radio ZBAA_TWR: selcal EF-GH"_qs,
                                   u"broadcast ZBAA_TWR: Runway 36R closed: 18L in use"_qs,
                                   u"server: The network goes down at midnight"_qs};
        QCOMPARE(run.texts, expected);
    }

    void aSilentControllerIsGoneAfterAMinute()
    {
        ScriptRun run(Protocol::Classic);
        QVERIFY2(run.open(QStringLiteral("silent-controller")), qPrintable(run.player.error()));
        bool silent = false;
        const QString error = run.play([&] {
            const bool speaks = run.played.filter(QStringLiteral("falls silent")).isEmpty();
            if (!silent && !speaks)
                run.clock.advance(61'000);
            silent = !speaks;
        });
        QVERIFY2(error.isEmpty(), qPrintable(error));
        QVERIFY(silent);
    }

    void aSupervisorAnswers()
    {
        ScriptRun run(Protocol::Classic);
        QVERIFY2(run.open(QStringLiteral("wallop")), qPrintable(run.player.error()));
        bool called = false;
        const QString error = run.play([&] {
            if (!called && run.player.isWaiting())
                run.client.manager->sendWallop(QStringLiteral("Help"));
            called = run.player.isWaiting();
        });
        QVERIFY2(error.isEmpty(), qPrintable(error));
        TRY_VERIFY(run.texts.contains(QStringLiteral("private TARVO_SUP: TARVO_SUP here, what is it?")));
    }
};

TARVO_TEST(ScriptTest)
#include "ScriptTest.moc"
