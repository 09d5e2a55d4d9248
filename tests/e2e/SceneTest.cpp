#include "e2e/Client.h"
#include "practice/ScriptPlayer.h"
#include "support/ManualClock.h"
#include "support/TestRegistry.h"

using namespace tarvo;
using namespace tarvo::test;
using tarvo::practice::ScriptPlayer;

namespace {
/// A client at Beijing, for whom a scene is played as fast as he answers.
struct Theatre
{
    ManualClock clock; ///< of the controllers' list
    Network network;
    Client client;
    ManualClock sceneClock;
    ScriptPlayer player{network.practice, sceneClock};
    QStringList texts; ///< that the client got: private, radio, broadcast, from the server, SELCAL; each after its kind
    QStringList played;

    explicit Theatre(Protocol protocol) : client(network, protocol)
    {
        QObject::connect(&player, &ScriptPlayer::played, &player, [this](const QString &text) { played << text; });
    }

    bool open(const QString &scene)
    {
        if (!network.started || !player.loadFile(QStringLiteral(TARVO_SCENES "/%1.scene").arg(scene)) ||
            !client.signIn())
            return false;
        client.controllers = std::make_shared<manager::ControllerManager>(client.manager, clock);
        listen();
        return client.activateXPlane() && client.connectPilot() &&
               QTest::qWaitFor([this] { return !client.events.isEmpty(); }, patienceMs);
    }

    /// Plays it until it is over. What went wrong, or nothing.
    QString play(const std::function<void()> &meanwhile = [] {})
    {
        const bool over = QTest::qWaitFor(
            [&] {
                meanwhile();
                client.fire("slowTimer"); // which wouldn't go off often by itself
                if (!player.isWaiting())
                    sceneClock.advance(100);
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

class SceneTest : public QObject
{
    Q_OBJECT

private slots:
    void isPlayedToItsEnd_data()
    {
        QTest::addColumn<QString>("scene");
        QTest::addColumn<Protocol>("protocol");
        QTest::newRow("a pilot's life, classic") << QStringLiteral("pilot") << Protocol::Classic;
        QTest::newRow("a pilot's life, by token") << QStringLiteral("pilot") << Protocol::Token;
        QTest::newRow("controllers") << QStringLiteral("controllers") << Protocol::Classic;
    }

    void isPlayedToItsEnd()
    {
        QFETCH(QString, scene);
        QFETCH(Protocol, protocol);
        Theatre theatre(protocol);
        QVERIFY2(theatre.open(scene), qPrintable(theatre.player.error()));
        const QString error = theatre.play();
        QVERIFY2(error.isEmpty(), qPrintable(error));
        QVERIFY(theatre.network.practice.xplane().plugin().aircraft().isEmpty());
    }

    void textsArrive()
    {
        Theatre theatre(Protocol::Classic);
        QVERIFY2(theatre.open(QStringLiteral("text")), qPrintable(theatre.player.error()));
        const QString error = theatre.play();
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
        QCOMPARE(theatre.texts, expected);
    }

    void aSilentControllerIsGoneAfterAMinute()
    {
        Theatre theatre(Protocol::Classic);
        QVERIFY2(theatre.open(QStringLiteral("silent-controller")), qPrintable(theatre.player.error()));
        bool silent = false;
        const QString error = theatre.play([&] {
            const bool speaks = theatre.played.filter(QStringLiteral("falls silent")).isEmpty();
            if (!silent && !speaks)
                theatre.clock.advance(61'000);
            silent = !speaks;
        });
        QVERIFY2(error.isEmpty(), qPrintable(error));
        QVERIFY(silent);
    }

    void aSupervisorAnswers()
    {
        Theatre theatre(Protocol::Classic);
        QVERIFY2(theatre.open(QStringLiteral("wallop")), qPrintable(theatre.player.error()));
        bool called = false;
        const QString error = theatre.play([&] {
            if (!called && theatre.player.isWaiting())
                theatre.client.manager->sendWallop(QStringLiteral("Help"));
            called = theatre.player.isWaiting();
        });
        QVERIFY2(error.isEmpty(), qPrintable(error));
        TRY_VERIFY(theatre.texts.contains(QStringLiteral("private TARVO_SUP: TARVO_SUP here, what is it?")));
    }
};

TARVO_TEST(SceneTest)
#include "SceneTest.moc"
