#include "practice/fsd/FsdResident.h"
#include "Peers.h"
#include "support/ManualClock.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>

#include <memory>

using namespace tarvo::practice;
using namespace tarvo::test;

namespace {
/// Keeps what it hears, without line ends.
class Listener : public FsdResident
{
public:
    using FsdResident::FsdResident;
    void hear(const QString &line) override { heard.append(line.chopped(2)); }

    QStringList heard;
};

FsdIdentity pilot(const char *callsign)
{
    return FsdResident::pilot(QString::fromLatin1(callsign), QStringLiteral("9001"), QStringLiteral("Wei ZBAA"));
}

FsdIdentity controller(const char *callsign)
{
    return FsdResident::controller(QString::fromLatin1(callsign), QStringLiteral("9002"), QStringLiteral("Tower"));
}

QString text(const QByteArray &line)
{
    return QString::fromLatin1(line);
}
} // namespace

/// RES1, a pilot, and ZBAA_TWR live in the server at Beijing; AB1 is connected.
class FsdResidentTest : public QObject
{
    Q_OBJECT

    ManualClock m_clock;
    std::unique_ptr<PracticeNetwork> m_network;
    std::unique_ptr<Listener> m_resident;
    std::unique_ptr<Listener> m_tower;
    std::unique_ptr<FsdLineClient> m_a;

    FsdServer &fsd() { return m_network->fsd(); }
    void say(const QByteArray &line) { fsd().say(*m_resident, text(line + "\r\n")); }

private slots:
    void init()
    {
        m_network = std::make_unique<PracticeNetwork>(quietSettings(), m_clock);
        QVERIFY(m_network->start());
        m_resident = std::make_unique<Listener>(pilot("RES1"));
        m_resident->position = FsdPosition{40.0, 116.5};
        m_resident->aircraftType = QStringLiteral("B738");
        m_resident->flightPlan = QStringLiteral("$FPRES1:SERVER:I:B738\r\n");
        m_tower = std::make_unique<Listener>(controller("ZBAA_TWR"));
        m_tower->position = FsdPosition{40.0, 116.5};
        m_tower->facility = 4;
        QVERIFY(fsd().addResident(*m_resident));
        QVERIFY(fsd().addResident(*m_tower));
        m_a = std::make_unique<FsdLineClient>(fsd());
        m_a->logIn("AB1");
        settle(*m_a, "AB1");
    }

    void cleanup()
    {
        fsd().removeResident(*m_tower);
        fsd().removeResident(*m_resident);
        m_a.reset();
        m_network.reset();
    }

    void newcomersAndResidentsAreToldOfEachOther()
    {
        QCOMPARE(m_a->count("#APRES1:SERVER:9001::1:9:0:Wei ZBAA\r\n"), 1);
        QCOMPARE(m_a->count("#AAZBAA_TWR:SERVER:Tower:9002::1:9\r\n"), 1);
        QCOMPARE(m_tower->heard, QStringList{QStringLiteral("#APAB1:SERVER:1001::1:9:5:Lin Xiaozhou ZBAA")});
        Listener late(pilot("RES2"));
        QVERIFY(fsd().addResident(late));
        TRY_VERIFY(m_a->got("#APRES2:SERVER:9001:"));
        QCOMPARE(fsd().residents().join(u' '), QStringLiteral("RES1 ZBAA_TWR RES2"));
        QCOMPARE(fsd().callsigns(), QStringList{QStringLiteral("AB1")});
        QCOMPARE(m_resident->heard.size(), 1); // residents aren't told of each other
        fsd().removeResident(late);
        TRY_VERIFY(m_a->got("#DPRES2:9001\r\n"));
        fsd().removeResident(*m_tower);
        TRY_VERIFY(m_a->got("#DAZBAA_TWR:9002\r\n"));
        m_a->socket.abort();
        TRY_COMPARE(m_resident->heard.constLast(), QStringLiteral("#DPAB1:1001"));
    }

    void aCallsignIsTakenOnce()
    {
        Listener another(pilot("RES1"));
        QVERIFY(!fsd().addResident(another));
        Listener pretender(pilot("AB1"));
        QVERIFY(!fsd().addResident(pretender));
        fsd().removeResident(another); // never came in: the one who did stays
        QVERIFY(fsd().residents().contains(QStringLiteral("RES1")));
        FsdLineClient peer(fsd());
        peer.logIn("RES1", "1002");
        TRY_VERIFY(peer.got("$ERSERVER:unknown:1:RES1:Callsign in use\r\n"));
        TRY_VERIFY(peer.closed());
    }

    void linesReachResidents_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<bool>("toPilot");
        QTest::addColumn<bool>("toTower");
        const auto row = [](const char *name, const char *line, bool toPilot, bool toTower) {
            QTest::newRow(name) << QByteArray(line) << toPilot << toTower;
        };
        row("private text", "#TMAB1:RES1:hi:there", true, false);
        row("private text in lower case", "#TMAB1:res1:hi", true, false);
        row("radio", "#TMAB1:@18500:hi", true, true);
        row("broadcast", "#TMAB1:*:hi", true, true);
        row("wallop", "#TMAB1:*S:help", true, true);
        row("query", "$CQAB1:RES1:CAPS", true, false);
        row("answer", "$CRAB1:ZBAA_TWR:C?:118.500", false, true);
        row("aircraft request", "#SBAB1:RES1:PIR", true, false);
        row("configuration to all", "$CQAB1:@94386:ACC:{}", true, true);
        row("ping", "$PIAB1:RES1:1", true, false);
        row("question to the server about one", "$CQAB1:SERVER:FP:RES1", false, false);
        row("position", "@N:AB1:2000:1:40.000000:116.500000:115:0:2:-118", false, false);
        row("fast position", "#STAB1:40.000000:116.500000:115.00:115.00:2:0.00", false, false);
    }

    void linesReachResidents()
    {
        QFETCH(QByteArray, line);
        QFETCH(bool, toPilot);
        QFETCH(bool, toTower);
        m_a->report("AB1", 40.5, 116.5); // 30 miles away
        m_a->send(line);
        settle(*m_a, "AB1");
        QCOMPARE(m_resident->heard.contains(text(line)), toPilot);
        QCOMPARE(m_tower->heard.contains(text(line)), toTower);
        QVERIFY2(!m_a->got("$ER"), m_a->all().constData());
    }

    void radioReachesAsFarAsTheRange()
    {
        m_a->report("AB1", 41.5, 116.5); // 90 miles
        m_a->send("#TMAB1:@18500:hi");
        settle(*m_a, "AB1");
        QCOMPARE(m_tower->heard.size(), 1);
        m_tower->visibilityRangeNm = 100;
        m_a->send("#TMAB1:@18500:hi");
        settle(*m_a, "AB1");
        QCOMPARE(m_tower->heard.size(), 2);
        QCOMPARE(m_resident->heard.size(), 1);
    }

    void whatResidentsSayReachesTheConnected_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<bool>("near");
        QTest::addColumn<bool>("far");
        const auto row = [](const char *name, const char *line, bool near, bool far) {
            QTest::newRow(name) << QByteArray(line) << near << far;
        };
        row("position", "@N:RES1:2000:1:40.000000:116.500000:115:0:2:0", true, false);
        row("fast position", "^RES1:40.000000:116.500000:115.00:115.00:2:0:0:0:0:0:0:0.00", true, false);
        row("stopped position", "#STRES1:40.000000:116.500000:115.00:115.00:2:0.00", true, false);
        row("radio", "#TMRES1:@18500:hi", true, false);
        row("configuration to all", "$CQRES1:@94386:ACC:{}", true, false);
        row("broadcast", "#TMRES1:*:hi", true, true);
        row("private text", "#TMRES1:AB1:hi", true, true);
        row("text to nobody", "#TMRES1:NOBODY:hi", false, false);
        row("text to another resident", "#TMRES1:ZBAA_TWR:hi", false, false);
    }

    void whatResidentsSayReachesTheConnected()
    {
        QFETCH(QByteArray, line);
        QFETCH(bool, near);
        QFETCH(bool, far);
        for (const auto &[latitude, gets] : {std::pair(40.5, near), std::pair(41.5, far)}) {
            m_a->report("AB1", latitude, 116.5);
            settle(*m_a, "AB1");
            m_a->forget();
            QCOMPARE(fsd().say(*m_resident, text(line + "\r\n")), gets);
            settle(*m_a, "AB1");
            QCOMPARE(m_a->count(line + "\r\n"), gets ? 1 : 0);
        }
        QVERIFY(m_tower->heard.size() == 1); // the newcomer alone
    }

    void theServerAnswersForResidents_data()
    {
        QTest::addColumn<QByteArray>("query");
        QTest::addColumn<QByteArray>("answer");
        const auto row = [](const char *name, const char *query, const char *answer) {
            QTest::newRow(name) << QByteArray(query) << QByteArray(answer);
        };
        row("a controller", "$CQAB1:SERVER:ATC:zbaa_twr", "$CRSERVER:AB1:ATC:Y:ZBAA_TWR\r\n");
        row("a pilot is none", "$CQAB1:SERVER:ATC:RES1", "$CRSERVER:AB1:ATC:N:RES1\r\n");
        row("flight plan", "$CQAB1:SERVER:FP:RES1", "$CRSERVER:AB1:FP:RES1:B738\r\n$FPRES1:SERVER:I:B738\r\n");
        row("flight plan by text", "#TMAB1:SERVER:FP:RES1:GET", "$CRSERVER:AB1:FP:RES1:B738\r\n");
        row("no flight plan", "$CQAB1:SERVER:FP:ZBAA_TWR", "$ERSERVER:AB1:8:ZBAA_TWR:No flight plan\r\n");
    }

    void theServerAnswersForResidents()
    {
        QFETCH(QByteArray, query);
        QFETCH(QByteArray, answer);
        m_a->send(query);
        QTRY_VERIFY2(m_a->got(answer), m_a->all().constData());
    }

    void pilotsNearEachOtherAreAskedForFastPositions()
    {
        const QString on = QStringLiteral("$SFSERVER:RES1:1");
        const QString off = QStringLiteral("$SFSERVER:RES1:0");
        m_a->report("AB1", 40.07, 116.5); // 4.2 miles
        TRY_VERIFY(m_a->got("$SFSERVER:AB1:1\r\n"));
        TRY_VERIFY(m_resident->heard.contains(on));
        m_resident->position = FsdPosition{40.3, 116.5}; // flies away
        fsd().keepAlive();
        TRY_VERIFY(m_a->got("$SFSERVER:AB1:0\r\n"));
        QVERIFY(m_resident->heard.contains(off));
        m_a->report("AB1", 40.3, 116.5);
        TRY_COMPARE(m_resident->heard.count(on), 2);
        m_a->socket.abort();
        TRY_COMPARE(m_resident->heard.count(off), 2);
        QVERIFY(std::none_of(m_tower->heard.begin(), m_tower->heard.end(),
                             [](const QString &line) { return line.startsWith(QStringLiteral("$SF")); }));
    }

    void residentsArePastTheLimits()
    {
        m_clock.advance(3'600'000);
        fsd().keepAlive();
        TRY_VERIFY(m_a->closed()); // silent for too long
        QCOMPARE(fsd().residents().size(), 2);
    }

    void positionsOfResidentsAreNotTold()
    {
        QSignalSpy sent(&fsd(), &FsdServer::lineSent);
        m_a->report("AB1", 40.5, 116.5);
        settle(*m_a, "AB1");
        sent.clear();
        say("@N:RES1:2000:1:40.000000:116.500000:115:0:2:0");
        say("#TMRES1:AB1:hi");
        QCOMPARE(sent.size(), 1);
        QCOMPARE(sent.at(0), (QVariantList{QStringLiteral("AB1"), QStringLiteral("#TMRES1:AB1:hi")}));
    }

    void aCrowdIsServedInSilence()
    {
        QSignalSpy sent(&fsd(), &FsdServer::lineSent);
        QSignalSpy received(&fsd(), &FsdServer::lineReceived);
        Listener one(pilot("CRD1"));
        one.inCrowd = true;
        one.position = FsdPosition{40.5, 116.5};
        one.aircraftType = QStringLiteral("A320");
        one.flightPlan = QStringLiteral("$FPCRD1:SERVER:I:A320\r\n");
        QVERIFY(fsd().addResident(one));
        TRY_VERIFY(m_a->got("#APCRD1:"));
        m_a->report("AB1", 40.5, 116.5);
        TRY_VERIFY(m_a->got("$SFSERVER:AB1:1\r\n"));
        m_a->send("$CQAB1:CRD1:CAPS");
        m_a->send("$CQAB1:SERVER:FP:CRD1");
        m_a->send("#TMAB1:@18100:hi");
        m_a->send("#TMAB1:*:hi");
        TRY_VERIFY(m_a->got("$CRSERVER:AB1:FP:CRD1:A320\r\n$FPCRD1:SERVER:I:A320\r\n"));
        TRY_VERIFY(m_resident->heard.contains(QStringLiteral("#TMAB1:*:hi")));
        fsd().sayPositions({{&one, "@N:CRD1:first\r\n"}, {m_resident.get(), "@N:RES1:second\r\n"}});
        TRY_VERIFY(m_a->got("@N:CRD1:first\r\n@N:RES1:second\r\n"));
        QCOMPARE(one.heard, QStringList{QStringLiteral("$CQAB1:CRD1:CAPS")});
        fsd().removeResident(one);
        TRY_VERIFY(m_a->got("#DPCRD1:9001\r\n"));
        for (const QSignalSpy *spy : {&sent, &received}) {
            for (const QVariantList &line : *spy)
                QVERIFY2(!line.at(1).toString().contains(QStringLiteral("CRD1")), qPrintable(line.at(1).toString()));
        }
    }

    void aNewcomerMeetsACrowd()
    {
        Listener one(pilot("CRD1"));
        one.inCrowd = true;
        QVERIFY(fsd().addResident(one));
        FsdLineClient peer(fsd());
        peer.logIn("XY2", "1002");
        TRY_VERIFY(peer.got("#APCRD1:"));
        QVERIFY(one.heard.isEmpty());
        fsd().removeResident(one);
    }

    void whatIsOutOfRangeIsLeftOutOfABatch()
    {
        Listener far(pilot("FAR1"));
        far.position = FsdPosition{50.0, 116.5};
        QVERIFY(fsd().addResident(far));
        m_a->report("AB1", 40.5, 116.5);
        settle(*m_a, "AB1");
        m_a->forget();
        fsd().sayPositions({{&far, "@N:FAR1:x\r\n"}, {m_resident.get(), "@N:RES1:x\r\n"}});
        TRY_VERIFY(m_a->got("@N:RES1:x\r\n"));
        QVERIFY(!m_a->got("@N:FAR1"));
        fsd().removeResident(far);
    }
};

TARVO_TEST(FsdResidentTest)
#include "FsdResidentTest.moc"
