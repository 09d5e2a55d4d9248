#include "manager/ControllerManager.h"
#include "manager/CrowdedSession.h"
#include "manager/UserAircraftManager.h"
#include "support/MainThreadWatch.h"
#include "support/TestRegistry.h"

using namespace tarvo;
using namespace tarvo::test;
using tarvo::manager::NetworkManager;

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int lessBy = 20; // or it would take minutes
#else
constexpr int lessBy = 1;
#endif

/// A pilot on the network with all managers of a session, and a simulator that keeps nothing.
struct FloodedSession : CrowdedSession
{
    manager::ControllerManager controllers{manager, clock};
    manager::UserAircraftManager own{manager};

    FloodedSession()
    {
        FakeSimulator *simulator = sim.get();
        simulator->onCall = [simulator](const QString &) {
            simulator->calls.clear();
            simulator->told.clear();
        };
    }
};

/// "AB2" for all, or "X17" for the 17th of ever new ones.
QString nameOf(bool same, int number)
{
    return same ? ab2 : u"X%1"_qs.arg(number);
}

} // namespace

/// The session as the program composes it, without pages, when a server sends more than anybody needs.
class SessionFloodTest : public QObject
{
    Q_OBJECT

private slots:
    void theEventLoopTurns_data()
    {
        QTest::addColumn<QString>("line"); // %1: the callsign
        QTest::addColumn<int>("count");
        QTest::newRow("slow positions") << TrafficSession::slow(u"%1"_qs, 250) << 100'000;
        QTest::newRow("fast positions") << TrafficSession::fast(u"%1"_qs) << 20'000;
        QTest::newRow("plane information") << u"#SB%1:AB1:PI:GEN:EQUIPMENT=B738"_qs << 20'000;
        QTest::newRow("flight plans") << TrafficSession::flightPlan(u"B738"_qs, u"%1"_qs) << 20'000;
        QTest::newRow("answers about flight plans") << u"$CRSERVER:AB1:FP:%1:B744"_qs << 100'000;
        QTest::newRow("configurations") << TrafficSession::configuration(fullGearDown, u"%1"_qs) << 20'000;
        QTest::newRow("stations") << u"%%1:18500:4:40:5:40.0:116.0:0"_qs << 20'000;
        QTest::newRow("questions") << u"$CQ%1:AB1:CAPS"_qs << 20'000;
        QTest::newRow("texts") << u"#TM%1:AB1:hello"_qs << 20'000;
    }

    void theEventLoopTurns()
    {
        QFETCH(QString, line);
        QFETCH(int, count);
        for (const bool same : {true, false}) {
            FloodedSession s;
            QVERIFY(s.online);
            QByteArray flood;
            for (int i = 0; i < count / lessBy; ++i)
                flood += QString(line).replace(u"%1"_qs, nameOf(same, i)).toLatin1() + "\r\n";
            QSignalSpy ends(s.manager.get(), &NetworkManager::muteReceived);
            s.peer.injectBytes(flood + "#MUSERVER:AB1:1\r\n");
            MainThreadWatch watch;
            const QtMessageHandler told =
                qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
            const bool over = waitFor([&] { return !ends.isEmpty(); });
            qInstallMessageHandler(told);
            qInfo("stood still for %.1f ms at most", watch.longest().processorMs);
            QVERIFY(over);
            VERIFY_NO_STANDSTILL(watch);
        }
    }
};

TARVO_TEST(SessionFloodTest)
#include "SessionFloodTest.moc"
