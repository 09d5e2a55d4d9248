#include "manager/Session.h"
#include "support/TestRegistry.h"

#include <QCoreApplication>
#include <QMetaMethod>

#include <algorithm>
#include <functional>
#include <utility>

using namespace tarvo;
using tarvo::manager::NetworkManager;
using tarvo::test::FakeSimulator;
using tarvo::test::Protocol;
using tarvo::test::Session;
using tarvo::test::waitFor;

namespace {

enum class Deed
{
    None,
    Disconnect,
    ConnectAnew,
    Destroy,
    ReplaceSimulator
};

enum class Story
{
    WholeSession,
    RefusedToken,
    NoServer,
    ServerCloses,
    ServerKills,
    SimulatorForces
};

/// Everything that a session may hear, in one chunk. AB1 is the own callsign.
const QByteArray script = "$DISERVER:CLIENT:FSD:abc\r\n"
                          "#APAB1:SERVER:1001::1:9:5:Li Lei\r\n"
                          "$CRSERVER:AB1:IP:10.0.0.9\r\n"
                          "@N:AB2:2000:1:40.5:116.25:3281:250:0:0\r\n"
                          "$CQAB2:@94386:ACC:{\"config\":{\"is_full_data\":true}}\r\n"
                          "#SBAB2:AB1:PI:GEN:EQUIPMENT=B738\r\n"
                          "$CQAB2:@94386:ACC:{\"config\":{\"gear_down\":true}}\r\n"
                          "@N:AB2:2000:1:40.5:116.25:3281:250:0:0\r\n"
                          "^AB2:40.5:116.25:3281.00:1000.00:0:30:5:40:0.1:0.2:0.3:7.5\r\n"
                          "$FPAB2:*A:I:A320:440:ZBAA:0100:0105:32000:ZSSS:2:0:4:0:ZSPD:/V/:A B C\r\n"
                          "$CRSERVER:AB1:FP:AB2:B744\r\n"
                          "#TMSERVER:AB1:welcome\r\n"
                          "#TMAB2:AB1:hello\r\n"
                          "#TMAB2:*:all\r\n"
                          "#TMAB2:@18500:AB1, hello\r\n"
                          "#TMAB2:@18500:SELCAL EF-GH\r\n"
                          "%ZBAA_TWR:18500:4:40:5:40.0:116.0:0\r\n"
                          "$CRSERVER:AB1:ATC:Y:ZBAA_TWR\r\n"
                          "$CRZBAA_TWR:AB1:RN:Han Mei:1:3\r\n"
                          "$CRZBAA_TWR:AB1:ATIS:T:wind calm\r\n"
                          "$CRZBAA_TWR:AB1:ATIS:E:1\r\n"
                          "$CQAB2:AB1:CAPS\r\n"
                          "$CRAB2:AB1:CAPS:ACCONFIG=1\r\n"
                          "$SFSERVER:AB1:1\r\n"
                          "#MUSERVER:AB1:1\r\n"
                          "$ERSERVER:AB1:4:x:Syntax error\r\n"
                          "X:no line\r\n"
                          "#DAZBAA_TWR:1002\r\n"
                          "#DPAB2:1002\r\n"
                          "#DPAB1:1001\r\n"
                          "$ZCSERVER:end:quiet\r\n";

const QString lineUp = u"notificationPosted Connected to network."_qs;
const QString over = u"networkDisconnected"_qs;

/// The news of a session's end, which is told to its end even if somebody acts in between.
bool beginsTheEnd(const QString &event)
{
    return event.startsWith(u"notificationPosted Disconnected"_qs) ||
           event.startsWith(u"notificationPosted Forcibly"_qs);
}

/// What the own simulator says is of no session, and what takes all away does no harm to any.
bool isOfTheSimulator(const QString &event)
{
    return event.startsWith(u"simulator"_qs) || event == u"radioStatesUpdate"_qs ||
           event == u"told removeAllAircraft"_qs || event == u"told clearControllers"_qs;
}

/// Writes down what is raised and told, and does the deed within the event with that number.
class Witness : public QObject
{
    Q_OBJECT

public:
    Session s;
    std::shared_ptr<FakeSimulator> next = std::make_shared<FakeSimulator>();
    QStringList heard;

    explicit Witness(Story story, Deed deed = Deed::None, qsizetype at = -1)
        : s(story == Story::RefusedToken ? Protocol::Token : Protocol::Classic), m_story(story), m_deed(deed), m_at(at)
    {
        s.addSimulator();
        emit s.sim->radioStackStateChanged(
            {.com1Frequency = 118500, .com1TransmitEnabled = true, .com1ReceiveEnabled = true});
        s.sim->onCall = [this](const QString &call) { note(u"told "_qs + call.section(u' ', 0, 0)); };
        listen();
    }

    bool hasActed() const { return m_after >= 0; }
    bool isAnew() const { return m_anew; }
    QStringList sinceTheDeed() const { return heard.mid(m_after); }

    /// A whole session, up to the deed.
    void run()
    {
        if (m_story == Story::NoServer)
            s.peer.stopListening();
        s.connectPilot();
        if (goesOn() && waitFor([this] { return !goesOn() || heard.contains(over) || heard.contains(lineUp); }) &&
            goesOn() && !heard.contains(over))
            play();
        settle();
    }

public slots:
    void onSignal() { note(QString::fromLatin1(NetworkManager::staticMetaObject.method(senderSignalIndex()).name())); }

private:
    void listen()
    {
        const QMetaObject *meta = &NetworkManager::staticMetaObject;
        const QMetaMethod slot = metaObject()->method(metaObject()->indexOfSlot("onSignal()"));
        for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
            if (meta->method(i).methodType() == QMetaMethod::Signal && meta->method(i).name() != "notificationPosted")
                connect(s.manager.get(), meta->method(i), this, slot);
        }
        connect(s.manager.get(), &NetworkManager::notificationPosted, this,
                [this](const QString &text) { note(u"notificationPosted "_qs + text); });
    }

    void note(const QString &event)
    {
        heard << event;
        if (heard.size() - 1 != m_at || m_acting)
            return;
        m_acting = true;
        act();
        m_after = heard.size();
    }

    void act()
    {
        switch (m_deed) {
        case Deed::None:
            break;
        case Deed::ConnectAnew:
            s.manager->disconnectFromNetwork();
            m_anew = s.manager->connectToNetwork(u"ab7"_qs, u"b738"_qs, QString(), true);
            break;
        case Deed::Destroy: // as the program does it: never under a call of the session's own
            QTimer::singleShot(0, this, [this] { s.manager.reset(); });
            s.manager->disconnectFromNetwork();
            break;
        case Deed::Disconnect:
            s.manager->disconnectFromNetwork();
            break;
        case Deed::ReplaceSimulator:
            s.manager->setSimulator(next);
            break;
        }
    }

    /// Nothing has been done yet that ends what the story is about.
    bool goesOn() const { return !hasActed(); }
    bool mayStillHear() const { return goesOn() || m_deed == Deed::ReplaceSimulator; }

    void play()
    {
        switch (m_story) {
        case Story::WholeSession:
            hearAll();
            aroundTheWire();
            break;
        case Story::RefusedToken:
            s.peer.inject(u"$DISERVER:CLIENT:FSD:abc"_qs);
            if (waitFor([this] { return s.tokens.waiting() > 0; }))
                s.tokens.refuse(u"banned"_qs);
            break;
        case Story::NoServer:
            break;
        case Story::ServerKills:
            s.peer.inject(u"$!!SERVER:AB1:bad manners"_qs);
            s.peer.closeConnection();
            break;
        case Story::ServerCloses:
            s.peer.waitForConnection();
            s.peer.closeConnection();
            break;
        case Story::SimulatorForces:
            emit s.sim->forceDisconnect(u"replay"_qs);
            break;
        }
        if (m_story != Story::WholeSession)
            (void)waitFor([this] { return !mayStillHear() || heard.contains(over); });
    }

    void hearAll()
    {
        if (!s.peer.nextLine().startsWith(u"#AP"_qs))
            return;
        s.manager->requestControllerAtis(u"ZBAA_TWR"_qs);
        s.peer.injectBytes(script);
        (void)waitFor([this] { return !mayStillHear() || s.peer.receivedBytes().contains("$ZRend"); });
    }

    /// What the pilot and the simulator do.
    void aroundTheWire()
    {
        const std::function<void()> steps[] = {
            [this] { s.manager->sendRadioMessage(u"hello"_qs); },
            [this] { s.manager->sendPrivateMessage(u"AB2"_qs, u"hello"_qs); },
            [this] { s.manager->sendWallop(u"help"_qs); },
            [this] { emit s.sim->simConnectionFailed(u"no"_qs); },
            [this] { emit s.sim->xplaneVersionUpdated(120105); },
            [this] { emit s.sim->pluginVersionChecked(true); },
            [this] { emit s.sim->cslValidationChecked(true); },
            [this] { emit s.sim->trafficMappingStatusChanged(u"ok"_qs); },
            [this] { emit s.sim->trafficSnapshotChanged({}); },
            [this] { emit s.sim->radioStackStateChanged({.com1Frequency = 121700}); },
            [this] { emit s.sim->simPausedStateChanged(true); },
            [this] { emit s.sim->simConnectionStateChanged(false); },
            [this] { pickAnotherSimulator(); },
            [this] { s.manager->disconnectFromNetwork(); },
        };
        for (const auto &step : steps) {
            if (goesOn())
                step();
        }
    }

    void pickAnotherSimulator()
    {
        const auto other = std::make_shared<FakeSimulator>();
        other->onCall = [this](const QString &call) {
            if (call != u"reconnectSimulator"_qs) // by the event loop, sooner or later
                note(u"told "_qs + call);
        };
        s.manager->setSimulator(other);
    }

    void settle()
    {
        if (m_deed == Deed::Destroy)
            (void)waitFor([this] { return !s.manager; });
        else if (m_anew) // the new line is up, or has failed as the old one did
            (void)waitFor([this] { return sinceTheDeed().contains(m_story == Story::NoServer ? over : lineUp); });
        else if (m_deed == Deed::Disconnect)
            (void)waitFor([this] { return !s.peer.isClientConnected(); });
        QCoreApplication::processEvents();
    }

    const Story m_story;
    const Deed m_deed;
    const qsizetype m_at;
    bool m_acting = false;
    qsizetype m_after = -1; ///< the first event behind the deed
    bool m_anew = false;    ///< another session has begun
};

} // namespace

/// Listeners that act inside a signal or a call, each that comes: after the deed nothing of the old session is heard.
class SessionDeedsTest : public QObject
{
    Q_OBJECT

private slots:
    void nothingOfTheOldSessionIsHeard_data()
    {
        QTest::addColumn<Story>("story");
        QTest::addColumn<Deed>("deed");
        QTest::addColumn<QStringList>("undisturbed");
        QTest::addColumn<qsizetype>("at");
        const std::pair<const char *, Story> stories[]{
            {"session", Story::WholeSession},     {"refused token", Story::RefusedToken},
            {"no server", Story::NoServer},       {"server closes", Story::ServerCloses},
            {"server kills", Story::ServerKills}, {"simulator forces", Story::SimulatorForces}};
        const std::pair<const char *, Deed> deeds[]{{"disconnect", Deed::Disconnect},
                                                    {"connect anew", Deed::ConnectAnew},
                                                    {"destroy", Deed::Destroy},
                                                    {"replace the simulator", Deed::ReplaceSimulator}};
        for (const auto &[storyName, story] : stories) {
            Witness rehearsal(story);
            rehearsal.run();
            QVERIFY(rehearsal.heard.contains(over));
            if (story == Story::WholeSession)
                QCOMPARE(missingFrom(rehearsal.heard).join(u' '), QString());
            for (const auto &[deedName, deed] : deeds) {
                for (qsizetype at = 0; at < rehearsal.heard.size(); ++at)
                    QTest::addRow("%s, %d %s: %s", storyName, int(at), qPrintable(rehearsal.heard.at(at)), deedName)
                        << story << deed << rehearsal.heard << at;
            }
        }
    }

    void nothingOfTheOldSessionIsHeard()
    {
        QFETCH(Story, story);
        QFETCH(Deed, deed);
        QFETCH(QStringList, undisturbed);
        QFETCH(qsizetype, at);
        Witness witness(story, deed, at);
        witness.run();
        QVERIFY(witness.hasActed());
        QCOMPARE(witness.heard.first(at + 1), undisturbed.first(at + 1));
        QStringList heard = witness.sinceTheDeed();
        if (deed == Deed::ReplaceSimulator) {
            QCOMPARE(heard.filter(u"told"_qs), QStringList());
            return;
        }
        heard.removeIf(isOfTheSimulator);
        // The next session has to wait until all have heard of this one's end.
        QCOMPARE(witness.isAnew(), deed == Deed::ConnectAnew && !isWithinTheEnd(undisturbed, at));
        QCOMPARE(heard, restOfTheEnd(undisturbed, at) + newSession(witness, story));
        if (deed == Deed::Destroy)
            return;
        QVERIFY(witness.s.manager->remoteAircraft().isEmpty());
        QCOMPARE(witness.s.manager->isBusy(), witness.isAnew() && story != Story::NoServer);
    }

private:
    /// The first and the last event of the end's news; what breaks a connection off is told with one.
    static std::pair<qsizetype, qsizetype> theEnd(const QStringList &undisturbed)
    {
        const auto first = std::find_if(undisturbed.begin(), undisturbed.end(), beginsTheEnd);
        const qsizetype last = undisturbed.indexOf(over);
        return {first == undisturbed.end() ? last : first - undisturbed.begin(), last};
    }
    static bool isWithinTheEnd(const QStringList &undisturbed, qsizetype at)
    {
        const auto [first, last] = theEnd(undisturbed);
        return at >= first && at <= last;
    }
    static QStringList restOfTheEnd(const QStringList &undisturbed, qsizetype at)
    {
        if (!isWithinTheEnd(undisturbed, at))
            return {};
        QStringList rest = undisturbed.mid(at + 1, theEnd(undisturbed).second - at);
        rest.removeIf(isOfTheSimulator);
        return rest;
    }

    /// It hears of its own line.
    static QStringList newSession(const Witness &witness, Story story)
    {
        if (!witness.isAnew())
            return {};
        if (story != Story::NoServer)
            return {lineUp};
        return {u"notificationPosted ConnectionRefusedError: Connection refused"_qs, over};
    }

    /// The script gets to all signals, and to the calls of the simulator that a session makes.
    static QStringList missingFrom(const QStringList &heard)
    {
        QStringList names;
        const QMetaObject *meta = &NetworkManager::staticMetaObject;
        for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
            if (meta->method(i).methodType() == QMetaMethod::Signal)
                names << QString::fromLatin1(meta->method(i).name());
        }
        for (const char *call :
             {"addAircraft", "updateAircraftConfiguration", "removeAircraft", "removeAllAircraft", "clearControllers",
              "positionUpdate", "fastPositionUpdate", "showRadioMessageSent", "showRadioMessageReceived",
              "showNotification", "showPrivateMessageSent", "showPrivateMessageReceived", "networkConnected",
              "networkDisconnected", "selcalAlert"})
            names << u"told "_qs + QLatin1StringView(call);
        names.removeIf([&heard](const QString &name) { return !heard.filter(name).isEmpty(); });
        return names;
    }
};

TARVO_TEST(SessionDeedsTest)
#include "SessionDeedsTest.moc"
