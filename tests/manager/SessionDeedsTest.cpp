#include "manager/Session.h"
#include "support/TestRegistry.h"

#include <QCoreApplication>
#include <QMetaMethod>

#include <functional>
#include <utility>

using namespace tarvo;
using tarvo::manager::NetworkManager;
using tarvo::test::FakeSimulator;
using tarvo::test::Session;

namespace {

enum class Deed
{
    Disconnect,
    ConnectAnew,
    Destroy,
    ReplaceSimulator
};

/// Everything that a session may hear, in one chunk. AB1 is the own callsign.
const QByteArray script = "$DISERVER:CLIENT:FSD:abc\r\n"
                          "#APAB1:SERVER:1001::1:9:5:Li Lei\r\n"
                          "$CRSERVER:AB1:IP:10.0.0.9\r\n"
                          "@N:AB2:2000:1:40.5:116.25:3281:250:0:0\r\n"
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
                          "#DAZBAA_TWR:1002\r\n"
                          "#DPAB2:1002\r\n"
                          "#DPAB1:1001\r\n"
                          "$ZCSERVER:end:quiet\r\n";

/// Notes what is raised and told, and does the deed at the first event of a name.
class Witness : public QObject
{
    Q_OBJECT

public:
    Session s;
    std::shared_ptr<FakeSimulator> next = std::make_shared<FakeSimulator>();
    QStringList trace; ///< since the deed returned
    bool done = false;

    Witness(const QString &place, Deed deed) : m_place(place), m_deed(deed)
    {
        s.addSimulator();
        emit s.sim->radioStackStateChanged(
            {.com1Frequency = 118500, .com1TransmitEnabled = true, .com1ReceiveEnabled = true});
        s.sim->onCall = [this](const QString &call) { note(u"told "_qs + call.section(u' ', 0, 0)); };
        const QMetaObject *meta = &NetworkManager::staticMetaObject;
        const QMetaMethod slot = metaObject()->method(metaObject()->indexOfSlot("onSignal()"));
        for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
            if (meta->method(i).methodType() == QMetaMethod::Signal)
                connect(s.manager.get(), meta->method(i), this, slot);
        }
    }

    /// A whole session, up to the deed.
    void run()
    {
        s.connectPilot();
        if (!done)
            s.peer.waitForConnection();
        if (!done && s.peer.nextLine().startsWith(u"#AP"_qs)) {
            s.manager->requestControllerAtis(u"ZBAA_TWR"_qs);
            s.peer.injectBytes(script);
            (void)QTest::qWaitFor([this] { return hasEnded() || s.peer.receivedBytes().contains("$ZRend"); });
        }
        aroundTheWire();
        settle();
    }

public slots:
    void onSignal() { note(QString::fromLatin1(NetworkManager::staticMetaObject.method(senderSignalIndex()).name())); }

private:
    void note(const QString &event)
    {
        if (done)
            trace << event;
        if (done || m_acting || event != m_place)
            return;
        m_acting = true;
        act();
        done = true;
    }

    void act()
    {
        switch (m_deed) {
        case Deed::ConnectAnew:
            s.manager->disconnectFromNetwork();
            s.manager->connectToNetwork(u"ab7"_qs, u"b738"_qs, QString(), true);
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
            [this] { s.manager->disconnectFromNetwork(); },
            [this] { s.manager->setSimulator(std::make_shared<FakeSimulator>()); },
        };
        for (const auto &step : steps) {
            if (!done)
                step();
        }
    }

    /// The deed has ended the connection that the script runs on.
    bool hasEnded() const { return done && m_deed != Deed::ReplaceSimulator; }

    void settle()
    {
        if (m_deed == Deed::Destroy) {
            (void)QTest::qWaitFor([this] { return !s.manager; });
        } else if (m_deed == Deed::ConnectAnew && done) {
            (void)QTest::qWaitFor([this] { return s.peer.receivedBytes().contains("#AAAB7"); });
        } else if (m_deed == Deed::Disconnect) {
            (void)QTest::qWaitFor([this] { return !s.peer.isClientConnected(); });
        }
        QCoreApplication::processEvents();
    }

    const QString m_place;
    const Deed m_deed;
    bool m_acting = false;
};

/// The end of a session is told to its end, even if somebody acts in between.
const QStringList endOfASession{u"told networkDisconnected"_qs, u"told removeAllAircraft"_qs,
                                u"told clearControllers"_qs, u"networkDisconnected"_qs};

/// Whether the event that follows the deed is of the old session, or of the old simulator.
bool isOld(const QString &event, const QString &place, Deed deed)
{
    if (deed == Deed::ReplaceSimulator)
        return event.startsWith(u"told"_qs);
    const bool ofTheSimulator = event.startsWith(u"simulator"_qs) || event == u"radioStatesUpdate"_qs;
    const qsizetype step = endOfASession.indexOf(place);
    const bool endsYet = step >= 0 && endOfASession.indexOf(event) > step;
    return !ofTheSimulator && !endsYet;
}

} // namespace

/// Listeners that act inside a signal or a call: after the deed nothing of the old session is heard.
class SessionDeedsTest : public QObject
{
    Q_OBJECT

private slots:
    void nothingOfTheOldSessionIsHeard_data()
    {
        QTest::addColumn<QString>("place");
        QTest::addColumn<Deed>("deed");
        const std::pair<const char *, Deed> deeds[] = {{"disconnect", Deed::Disconnect},
                                                       {"connect anew", Deed::ConnectAnew},
                                                       {"destroy", Deed::Destroy},
                                                       {"replace the simulator", Deed::ReplaceSimulator}};
        for (const auto &[name, deed] : deeds) {
            for (const QString &place : places())
                QTest::addRow("%s: %s", qPrintable(place), name) << place << deed;
        }
    }

    void nothingOfTheOldSessionIsHeard()
    {
        QFETCH(QString, place);
        QFETCH(Deed, deed);
        Witness witness(place, deed);
        witness.run();
        QVERIFY2(witness.done, qPrintable(place)); // the script gets there
        QStringList heard;
        for (const QString &event : std::as_const(witness.trace)) {
            if (isOld(event, place, deed))
                heard << event;
        }
        if (deed == Deed::ConnectAnew)
            QCOMPARE(heard, QStringList{u"notificationPosted"_qs}); // the new line is up
        else
            QCOMPARE(heard, QStringList());
        if (deed == Deed::Disconnect || deed == Deed::ConnectAnew) {
            QVERIFY(witness.s.manager->remoteAircraft().isEmpty());
            QCOMPARE(witness.s.isRunning("slowTimer"), deed == Deed::ConnectAnew);
        }
    }

private:
    /// All signals, and the calls of the simulator that a session makes.
    static QStringList places()
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
        return names;
    }
};

TARVO_TEST(SessionDeedsTest)
#include "SessionDeedsTest.moc"
