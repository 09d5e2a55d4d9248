#include "diagnosis/ServiceCheck.h"
#include "ServiceEndpoints.h"
#include "support/HttpPeer.h"
#include "support/TestRegistry.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <array>
#include <thread>

using namespace tarvo;
using namespace tarvo::diagnosis;
using namespace std::chrono_literals;

namespace {

constexpr ServiceLimits shortLimits{.name = 5s, .connection = 5s, .answer = 20ms};

Service serviceAt(ServiceKind kind, quint16 port)
{
    const QString host = QStringLiteral("127.0.0.1");
    return {kind, QStringLiteral("service"), host, port, QUrl(QStringLiteral("http://%1:%2/api").arg(host).arg(port))};
}

} // namespace

class ServiceCheckTest : public QObject
{
    Q_OBJECT

private slots:
    void servicesAreTheBuilds()
    {
        ServiceEndpoints endpoints;
        endpoints.apiBaseUrl = u"https://account.example.net/api"_qs;
        endpoints.fsdHost = u"fsd.example.net"_qs;
        endpoints.voiceHost = u"voice.example.net"_qs;
        QStringList titles;
        for (const Service &service : servicesOf(endpoints))
            titles << judgeService(service, {ServiceStep::Answered}).title;
        QCOMPARE(titles, (QStringList{u"账户服务 account.example.net:443"_qs, u"网络服务器 fsd.example.net:6809"_qs,
                                      u"语音服务器 voice.example.net:6808"_qs}));
    }

    void eachStepHasItsWords_data()
    {
        QTest::addColumn<ServiceStep>("step");
        QTest::addColumn<QString>("words");
        QTest::newRow("no name") << ServiceStep::NoName << u"域名无法解析"_qs;
        QTest::newRow("name too late") << ServiceStep::NameTooLate << u"域名解析超时"_qs;
        QTest::newRow("refused") << ServiceStep::Refused << u"拒绝连接"_qs;
        QTest::newRow("no connection") << ServiceStep::NoConnection << u"无法连接"_qs;
        QTest::newRow("no answer") << ServiceStep::NoAnswer << u"没有正确应答"_qs;
        QTest::newRow("failing") << ServiceStep::Failing << u"应答了错误"_qs;
        QTest::newRow("certificate") << ServiceStep::BadCertificate << u"加密连接不可信"_qs;
    }
    void eachStepHasItsWords()
    {
        QFETCH(const ServiceStep, step);
        QFETCH(const QString, words);
        const Finding finding = judgeService(serviceAt(ServiceKind::Fsd, 6809), {step, u"why"_qs});
        QCOMPARE(finding.mark, Mark::Bad);
        QCOMPARE(finding.detail, words + u"（why）"_qs);
        QVERIFY(!finding.advice.isEmpty());
    }

    void anAnswerIsGood()
    {
        const Finding finding = judgeService(serviceAt(ServiceKind::Fsd, 6809), {ServiceStep::Answered});
        QCOMPARE(finding, (Finding{Mark::Good, u"service 127.0.0.1:6809"_qs, u"正常"_qs}));
    }

    void httpStatuses_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<ServiceStep>("step");
        QTest::newRow("fine") << 200 << ServiceStep::Answered;
        QTest::newRow("wants a sign-in") << 401 << ServiceStep::Answered;
        QTest::newRow("has nothing there") << 404 << ServiceStep::Answered;
        QTest::newRow("a proxy wants a sign-in") << 407 << ServiceStep::NoAnswer;
        QTest::newRow("fails") << 503 << ServiceStep::Failing;
    }
    void httpStatuses()
    {
        QFETCH(const int, status);
        test::HttpPeer peer;
        peer.answer("GET", u"/api"_qs, {.status = status});
        const ServiceFacts facts = tryService(serviceAt(ServiceKind::Http, peer.port()));
        QTEST(facts.step, "step");
        QCOMPARE(facts.detail, u"HTTP %1"_qs.arg(status));
    }

    void httpServicesThatDontAnswer()
    {
        test::HttpPeer peer;
        peer.answer("GET", u"/api"_qs, {.delivery = test::HttpPeer::Delivery::CloseWithoutAnswer});
        QCOMPARE(tryService(serviceAt(ServiceKind::Http, peer.port())).step, ServiceStep::NoAnswer);
        peer.answer("GET", u"/api"_qs, {.delivery = test::HttpPeer::Delivery::Held});
        const ServiceLimits limits{.name = 5s, .connection = 10ms, .answer = 10ms};
        QCOMPARE(tryService(serviceAt(ServiceKind::Http, peer.port()), limits).step, ServiceStep::NoAnswer);
    }

    void anHttpServiceThatDrips_data()
    {
        QTest::addColumn<QByteArray>("head");
        QTest::addColumn<QByteArray>("drop");
        QTest::addColumn<ServiceStep>("step");
        QTest::newRow("its head") << QByteArray("HTTP/1.1 200 OK\r\n") << QByteArray("X: 1\r\n")
                                  << ServiceStep::NoAnswer;
        QTest::newRow("its body") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\n") << QByteArray("x")
                                  << ServiceStep::Answered;
    }
    void anHttpServiceThatDrips()
    {
        QFETCH(const QByteArray, head);
        QFETCH(const QByteArray, drop);
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        QTimer drip;
        connect(&server, &QTcpServer::newConnection, this, [&] {
            while (QTcpSocket *socket = server.nextPendingConnection()) {
                socket->write(head);
                connect(&drip, &QTimer::timeout, socket, [socket, drop] { socket->write(drop); });
            }
        });
        drip.start(2);
        // Its transfer never pauses for as long as this.
        const ServiceLimits limits{.name = 5s, .connection = 5s, .answer = 50ms};
        QTEST(tryService(serviceAt(ServiceKind::Http, server.serverPort()), limits).step, "step");
    }

    void nobodyListens_data()
    {
        QTest::addColumn<ServiceKind>("kind");
        QTest::newRow("HTTP") << ServiceKind::Http;
        QTest::newRow("FSD") << ServiceKind::Fsd;
        QTest::newRow("voice") << ServiceKind::Voice;
    }
    void nobodyListens()
    {
        QFETCH(const ServiceKind, kind);
        QTcpServer closed;
        QVERIFY(closed.listen(QHostAddress::LocalHost));
        const quint16 port = closed.serverPort();
        closed.close();
        QCOMPARE(tryService(serviceAt(kind, port)).step, ServiceStep::Refused);
    }

    void whereNothingConnects_data() { nobodyListens_data(); }
    void whereNothingConnects()
    {
        QFETCH(const ServiceKind, kind);
        QTcpServer server; // takes nobody, and has room for few who wait
        server.setListenBacklogSize(1);
        QVERIFY(server.listen(QHostAddress::LocalHost));
        std::array<QTcpSocket, 8> waiting;
        const bool isFull = std::any_of(waiting.begin(), waiting.end(), [&server](QTcpSocket &socket) {
            socket.connectToHost(QHostAddress::LocalHost, server.serverPort());
            return !socket.waitForConnected(30);
        });
        if (!isFull)
            QSKIP("This system lets any number of them wait.");
        const ServiceLimits limits{.name = 5s, .connection = 30ms, .answer = 5s};
        QCOMPARE(tryService(serviceAt(kind, server.serverPort()), limits).step, ServiceStep::NoConnection);
    }

    void aSilentServer()
    {
        QTcpServer server; // the system connects, nobody speaks
        QVERIFY(server.listen(QHostAddress::LocalHost));
        QCOMPARE(tryService(serviceAt(ServiceKind::Fsd, server.serverPort()), shortLimits).step, ServiceStep::NoAnswer);
        QCOMPARE(tryService(serviceAt(ServiceKind::Voice, server.serverPort())).step, ServiceStep::Answered);
    }

    void greetings_data()
    {
        QTest::addColumn<QByteArray>("greeting");
        QTest::addColumn<ServiceStep>("step");
        QTest::newRow("an FSD server's") << QByteArray("$DISERVER:CLIENT:1:ab\r\n") << ServiceStep::Answered;
        QTest::newRow("another's") << QByteArray("220 mail\r\n") << ServiceStep::NoAnswer;
        QTest::newRow("its beginning") << QByteArray("$D") << ServiceStep::NoAnswer;
    }
    void greetings()
    {
        QFETCH(const QByteArray, greeting);
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        ServiceFacts facts;
        const Service service = serviceAt(ServiceKind::Fsd, server.serverPort());
        const ServiceLimits limits{.answer = greeting.size() < 3 ? 20ms : 5s};
        std::thread checking([&] { facts = tryService(service, limits); });
        const bool connected = server.waitForNewConnection(5000);
        if (connected) {
            QTcpSocket *peer = server.nextPendingConnection();
            peer->write(greeting);
            peer->waitForBytesWritten(5000);
        }
        checking.join();
        QVERIFY(connected);
        QTEST(facts.step, "step");
    }

    void aGreetingThatDrips()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        ServiceFacts facts{ServiceStep::Answered};
        const Service service = serviceAt(ServiceKind::Fsd, server.serverPort());
        std::thread checking([&] { facts = tryService(service, {.answer = 60ms}); });
        const bool connected = server.waitForNewConnection(5000);
        if (connected) {
            QTcpSocket *peer = server.nextPendingConnection();
            for (const char *byte : {"$", "D", "I"}) { // each within the limit, all three not
                peer->write(byte);
                peer->waitForBytesWritten(5000);
                peer->waitForDisconnected(40);
            }
        }
        checking.join();
        QVERIFY(connected);
        QCOMPARE(facts.step, ServiceStep::NoAnswer);
    }

    void aNameThatIsNone()
    {
        Service service = serviceAt(ServiceKind::Voice, 1);
        service.host = u"no such name"_qs; // asks nobody
        QCOMPARE(tryService(service).step, ServiceStep::NoName);
    }
};

TARVO_TEST(ServiceCheckTest)
#include "ServiceCheckTest.moc"
