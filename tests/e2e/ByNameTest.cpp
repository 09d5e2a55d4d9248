#include "e2e/Client.h"
#include "fsd/NameResolver.h"
#include "support/MainThreadWatch.h"
#include "support/TestRegistry.h"

#include <QProcess>
#include <QTemporaryDir>

using namespace tarvo;
using tarvo::test::Client;
using tarvo::test::MainThreadWatch;
using tarvo::test::Network;
using tarvo::test::Protocol;

namespace {

const QString lateName = u"fsd.practice.test"_qs; // answered after a while
const QString dead = u"dead.practice.test"_qs;    // never answered

/// A dead name server keeps a look-up busy for far longer.
constexpr int soonMs = 5'000;

/// A client that is signed in and has its X-Plane, and a server that it knows by name.
struct NamedFlight
{
    Network network;
    std::unique_ptr<Client> client;

    bool prepare(const QString &host)
    {
        network.fsdHost = host;
        client = std::make_unique<Client>(network, Protocol::Classic);
        return network.started && client->signIn() && client->activateXPlane();
    }
    bool isLookingUp() const { return client->manager->isResolving(); }
};

} // namespace

/// The server's name is looked up at a name server of the test's own, which scripts/lib/name_server.py starts.
class ByNameTest : public QObject
{
    Q_OBJECT

private slots:
    void aPilotFliesByName()
    {
        NamedFlight flight;
        QVERIFY(flight.prepare(lateName));
        MainThreadWatch watch;
        int turnsMeanwhile = 0;
        QTimer turns;
        connect(&turns, &QTimer::timeout, this, [&] { turnsMeanwhile += flight.isLookingUp() ? 1 : 0; });
        turns.start(1);
        QVERIFY(flight.client->connectPilot());
        QVERIFY(turnsMeanwhile > 1);
        TRY_EVENTS(*flight.client, u"connected AB1"_qs);
        TRY_COMPARE(flight.network.practice.fsd().callsigns(), QStringList{u"AB1"_qs});
        QVERIFY(!flight.isLookingUp());
        VERIFY_NO_STANDSTILL(watch);
    }

    void aPilotWhoLeavesDuringTheLookUpIsNotConnected_data()
    {
        QTest::addColumn<QString>("host");
        QTest::newRow("answered late") << lateName;
        QTest::newRow("never answered") << dead;
    }
    void aPilotWhoLeavesDuringTheLookUpIsNotConnected()
    {
        QFETCH(QString, host);
        NamedFlight flight;
        QVERIFY(flight.prepare(host));
        bool wasLookingUp = false;
        QMetaObject::invokeMethod(
            flight.client->manager.get(),
            [&] {
                wasLookingUp = flight.isLookingUp();
                flight.client->manager->disconnectFromNetwork();
            },
            Qt::QueuedConnection);
        QElapsedTimer time;
        time.start();
        QVERIFY(!flight.client->connectPilot());
        QVERIFY(wasLookingUp);
        flight.client->signOut();
        flight.client.reset();
        QVERIFY(time.elapsed() < soonMs);
        QCOMPARE(flight.network.practice.fsd().connectionCount(), 0);
    }

    void aPilotWhoConnectsAnewDuringTheLookUpStaysConnected()
    {
        NamedFlight flight;
        QVERIFY(flight.prepare(lateName));
        bool anew = false;
        QMetaObject::invokeMethod(
            flight.client->manager.get(),
            [&] {
                flight.client->manager->disconnectFromNetwork();
                anew = flight.client->connectPilot();
            },
            Qt::QueuedConnection);
        QVERIFY(!flight.client->connectPilot());
        QVERIFY(anew);
        QVERIFY(flight.client->manager->isBusy());
        TRY_EVENTS(*flight.client, u"disconnected"_qs, u"connected AB1"_qs);
    }

    void theServerSendsTheSessionElsewhereByName()
    {
        NamedFlight flight;
        QVERIFY(flight.prepare(lateName));
        practice::FsdServer second(flight.network.practice.accounts(), flight.network.practice.tokens(),
                                   Network::quietSettings().fsd);
        QVERIFY(second.listen(QHostAddress(u"127.0.0.2"_qs), flight.network.practice.fsd().port()));
        QVERIFY(flight.client->connectPilot());
        TRY_EVENTS(*flight.client, u"connected AB1"_qs);
        auto &first = flight.network.practice.fsd();
        TRY_VERIFY(first.sendLine(u"AB1"_qs, u"$XXSERVER:AB1:second.practice.test"_qs));
        TRY_COMPARE(second.connectionCount(), 1);
        TRY_COMPARE(first.connectionCount(), 0);
        QVERIFY(flight.client->events.isEmpty());
    }

    void theProgramsEndWaitsForNoLookUp_data()
    {
        QTest::addColumn<QString>("leaver");
        QTest::newRow("of the FSD server") << u"/fsd_look_up_leaver"_qs;
        QTest::newRow("of the account service") << u"/app_leaver"_qs;
    }

    void theProgramsEndWaitsForNoLookUp()
    {
        QFETCH(QString, leaver);
        const QTemporaryDir folder;
        QProcess process;
        QElapsedTimer time;
        time.start();
        process.start(QCoreApplication::applicationDirPath() + leaver, {folder.path(), dead});
        QVERIFY(process.waitForFinished(test::patienceMs));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 0);
        QVERIFY(!process.readAllStandardError().contains("2000 ms")); // what a worker's end waits for otherwise
        QVERIFY2(time.elapsed() < soonMs, qPrintable(QString::number(time.elapsed())));
    }

    void aNameIsLookedUp_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("address");
        QTest::newRow("a name") << lateName << u"127.0.0.1"_qs;
        QTest::newRow("blanks around it") << u" "_qs + lateName + u"\t"_qs << u"127.0.0.1"_qs;
        QTest::newRow("no such name") << u"nobody.practice.test"_qs << QString();
    }
    void aNameIsLookedUp()
    {
        QFETCH(QString, name);
        QFETCH(QString, address);
        fsd::NameResolver resolver;
        const std::optional<QString> found = resolver.resolve(name);
        QVERIFY(found);
        QCOMPARE(*found, address);
    }

    void aPilotWaitsForNoAbandonedLookUp()
    {
        fsd::NameResolver resolver;
        QElapsedTimer time;
        time.start();
        QTimer turns;
        turns.callOnTimeout(&resolver, [&, left = 20]() mutable { // by then the dead name has been asked for
            if (--left == 0)
                resolver.abort();
        });
        turns.start(1);
        QVERIFY(!resolver.resolve(dead));
        QCOMPARE(resolver.resolve(lateName), u"127.0.0.1"_qs);
        QVERIFY2(time.elapsed() < soonMs, qPrintable(QString::number(time.elapsed())));
    }

    void theNewestLookUpWins()
    {
        fsd::NameResolver resolver;
        QStringList answers;
        resolver.lookUp(u"nobody.practice.test"_qs, [&](const QString &address) { answers << u"first "_qs + address; });
        resolver.lookUp(lateName, [&](const QString &address) { answers << u"second "_qs + address; });
        TRY_COMPARE(answers, QStringList{u"second 127.0.0.1"_qs});
    }
};

TARVO_TEST(ByNameTest)
#include "ByNameTest.moc"
