#include "ServiceEndpoints.h"
#include "diagnosis/FolderCheck.h"
#include "diagnosis/PortCheck.h"
#include "diagnosis/TestSettings.h"
#include "diagnosis/TimeLimit.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QTcpServer>
#include <QTest>
#include <QUdpSocket>

#include <future>
#include <memory>

using namespace tarvo;
using namespace tarvo::diagnosis;
using namespace std::chrono_literals;
using tarvo::test::marksOf;

/// Folders and ports: what of this machine the client needs.
class PlacesTest : public QObject
{
    Q_OBJECT

private slots:
    void findingsAreShown_data()
    {
        QTest::addColumn<Finding>("finding");
        QTest::addColumn<QString>("line");
        QTest::newRow("good") << Finding{Mark::Good, u"a"_qs, u"b"_qs} << u"✓ a：b"_qs;
        QTest::newRow("bad") << Finding{Mark::Bad, u"a"_qs, u"b"_qs, u"c"_qs} << u"✗ a：b\n    → c"_qs;
        QTest::newRow("skipped") << Finding{Mark::Skipped, u"a"_qs, u"b"_qs} << u"– a：b"_qs;
    }
    void findingsAreShown()
    {
        QFETCH(const Finding, finding);
        QTEST(shown(finding), "line");
        QCOMPARE(allGood({finding}), finding.mark != Mark::Bad);
    }

    void whatTakesTooLongIsLeft()
    {
        const auto gate = std::make_shared<std::promise<void>>();
        const auto opened = gate->get_future().share();
        QCOMPARE(within(10ms, [opened] { return opened.wait(), 1; }), std::nullopt);
        gate->set_value();
        QCOMPARE(within(10s, [opened] { return opened.wait(), 2; }), 2);
    }

    void aFolderIsLookedAt()
    {
        const QTemporaryDir folder;
        const FolderFacts facts = lookAtFolder(folder.path());
        QVERIFY(facts.exists && facts.rootWritable && facts.logsWritable && facts.freeBytes > 0);
        QCOMPARE(QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), QStringList());
        const FolderFacts none = lookAtFolder(folder.filePath(u"none/deep"_qs));
        QVERIFY(!none.exists && none.rootWritable);
        QVERIFY(!QFile::exists(none.root.section(u'/', 0, -2)));
        QFile(folder.filePath(u"logs"_qs)).open(QIODevice::WriteOnly); // a file in its place
        QVERIFY(!lookAtFolder(folder.path()).logsWritable);
        QVERIFY(!lookAtFolder(folder.filePath(u"logs/deep"_qs)).rootWritable);
    }

    void aFolderIsJudged_data()
    {
        QTest::addColumn<FolderFacts>("facts");
        QTest::addColumn<QStringList>("marks");
        constexpr qint64 enough = 200'000'000;
        const FolderFacts good{u"/r"_qs, true, true, true, enough};
        FolderFacts facts = good;
        QTest::newRow("good") << facts << QStringList{u"✓ 数据文件夹"_qs, u"✓ 磁盘空间"_qs};
        facts.freeBytes = enough - 1;
        QTest::newRow("nearly full") << facts << QStringList{u"✓ 数据文件夹"_qs, u"✗ 磁盘空间"_qs};
        facts.freeBytes = -1;
        QTest::newRow("size unknown") << facts << QStringList{u"✓ 数据文件夹"_qs};
        facts = good;
        facts.logsWritable = false;
        QTest::newRow("logs locked") << facts << QStringList{u"✓ 数据文件夹"_qs, u"✗ 日志文件夹"_qs, u"✓ 磁盘空间"_qs};
        facts.rootWritable = false;
        QTest::newRow("locked") << facts << QStringList{u"✗ 数据文件夹"_qs};
        QTest::newRow("before the first start")
            << FolderFacts{.root = u"/r"_qs, .rootWritable = true} << QStringList{u"✓ 数据文件夹"_qs};
        QTest::newRow("not there") << FolderFacts{.root = u"/r"_qs} << QStringList{u"✗ 数据文件夹"_qs};
    }
    void aFolderIsJudged()
    {
        QFETCH(const FolderFacts, facts);
        QTEST(marksOf(judgeFolder(facts.root, facts)), "marks");
    }

    void aDiskThatHangsIsAFault() { QCOMPARE(marksOf(judgeFolder({}, std::nullopt)), {u"✗ 数据文件夹"_qs}); }

    void portsOfServicesHere()
    {
        ServiceEndpoints endpoints;
        endpoints.apiBaseUrl = u"https://localhost/api"_qs;
        endpoints.fsdHost = u"127.0.0.2"_qs;
        endpoints.voiceHost = u"voice.example.net"_qs;
        const QList<LocalPort> ports = localServicePorts(endpoints);
        QCOMPARE(ports.size(), 2);
        QCOMPARE(ports.at(0).port, 443);
        QCOMPARE(ports.at(0).address, QHostAddress(QHostAddress::LocalHost));
        QCOMPARE(ports.at(1).port, 6809);
    }

    void portsAreTried_data()
    {
        QTest::addColumn<Protocol>("protocol");
        QTest::addColumn<QString>("title");
        QTest::newRow("TCP") << Protocol::Tcp << u"本机 TCP 端口 %1（X）"_qs;
        QTest::newRow("UDP") << Protocol::Udp << u"本机 UDP 端口 %1（X）"_qs;
    }
    void portsAreTried()
    {
        QFETCH(const Protocol, protocol);
        QFETCH(const QString, title);
        auto server = std::make_unique<QTcpServer>();
        auto socket = std::make_unique<QUdpSocket>();
        QVERIFY(server->listen(QHostAddress::Any) && socket->bind(QHostAddress::AnyIPv4));
        const quint16 taken = protocol == Protocol::Tcp ? server->serverPort() : socket->localPort();
        const LocalPort port{u"X"_qs, u"X"_qs, protocol, QHostAddress(QHostAddress::LocalHost), taken};
        QCOMPARE(tryPort(port).state, PortState::Taken);
        QCOMPARE(judgePort(port, tryPort(port)).mark, Mark::Good);
        QCOMPARE(judgePort(port, tryPort(port)).title, title.arg(taken));
        server.reset();
        socket.reset();
        QCOMPARE(tryPort(port).state, PortState::Free);
        QCOMPARE(tryPort(port).state, PortState::Free); // nothing of the first try stays
        QCOMPARE(judgePort(port, tryPort(port)).mark, Mark::Bad);
    }

    void aForbiddenPortIsAFault()
    {
        const LocalPort elsewhere{u"X"_qs, u"X"_qs, Protocol::Tcp, QHostAddress(u"192.0.2.1"_qs), 80};
        const PortFacts facts = tryPort(elsewhere); // nobody's here
        QCOMPARE(facts.state, PortState::Forbidden);
        QVERIFY(judgePort(elsewhere, facts).detail.contains(facts.error) && !facts.error.isEmpty());
    }
};

TARVO_TEST(PlacesTest)
#include "PlacesTest.moc"
