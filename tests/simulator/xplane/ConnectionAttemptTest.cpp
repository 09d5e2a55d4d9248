#include "simulator/xplane/ConnectionAttempt.h"
#include "support/TestRegistry.h"

#include <QTest>

using tarvo::simulator::xplane::ConnectionAttempt;

namespace {

constexpr qint64 now = 1'700'000'000;

ConnectionAttempt completeAttempt()
{
    ConnectionAttempt attempt;
    attempt.socketReady = true;
    attempt.request();
    attempt.begin();
    attempt.versionReceived = true;
    return attempt;
}

} // namespace

class ConnectionAttemptTest : public QObject
{
    Q_OBJECT

private slots:
    void waitsForTheSocket()
    {
        ConnectionAttempt attempt;
        attempt.request();
        QVERIFY(!attempt.begin());
        QVERIFY(attempt.requested);
        attempt.socketReady = true;
        QVERIFY(attempt.begin());
        QVERIFY(!attempt.begin()); // only once
        attempt.request();
        QVERIFY(attempt.begin()); // until wanted anew
    }

    void beginsWithCleanAnswers()
    {
        ConnectionAttempt attempt = completeAttempt();
        attempt.versionValid = false;
        attempt.cslValid = false;
        attempt.request();
        QVERIFY(attempt.begin());
        QVERIFY(attempt.versionValid);
        QVERIFY(attempt.cslValid);
        QVERIFY(!attempt.versionReceived);
    }

    void doesNotBeginOnALinkThatIsUp()
    {
        ConnectionAttempt attempt = completeAttempt();
        attempt.setConnected();
        attempt.request();
        QVERIFY(!attempt.begin());
        QVERIFY(!attempt.requested);
        QVERIFY(!attempt.started);
    }

    void completeNeeds_data()
    {
        QTest::addColumn<bool ConnectionAttempt::*>("field");
        QTest::addColumn<bool>("value");
        QTest::newRow("not yet connected") << &ConnectionAttempt::connected << true;
        QTest::newRow("requested") << &ConnectionAttempt::requested << false;
        QTest::newRow("started") << &ConnectionAttempt::started << false;
        QTest::newRow("version received") << &ConnectionAttempt::versionReceived << false;
        QTest::newRow("version valid") << &ConnectionAttempt::versionValid << false;
        QTest::newRow("paths valid") << &ConnectionAttempt::cslValid << false;
    }

    void completeNeeds()
    {
        QFETCH(bool ConnectionAttempt::*, field);
        QFETCH(bool, value);
        ConnectionAttempt attempt = completeAttempt();
        QVERIFY(attempt.isComplete(now, now));
        attempt.*field = value;
        QVERIFY(!attempt.isComplete(now, now));
    }

    void valuesAreFreshForSixteenSeconds()
    {
        ConnectionAttempt attempt = completeAttempt();
        QVERIFY(attempt.isComplete(now, now - 15));
        QVERIFY(!attempt.isComplete(now, now - 16));
        attempt.setConnected();
        QVERIFY(!attempt.isLost(now, now - 15));
        QVERIFY(attempt.isLost(now, now - 16));
        attempt.setDisconnected();
        QVERIFY(!attempt.isLost(now, now - 1000));
    }

    void connectingEndsTheAttempt()
    {
        ConnectionAttempt attempt = completeAttempt();
        attempt.setConnected();
        QVERIFY(attempt.connected);
        QVERIFY(!attempt.requested);
        QVERIFY(!attempt.started);
        QVERIFY(attempt.versionReceived);
        attempt.setDisconnected();
        QVERIFY(!attempt.connected);
        QVERIFY(!attempt.versionReceived);
    }

    void timeOutIsAFailureOnlyOnce()
    {
        ConnectionAttempt attempt = completeAttempt();
        QVERIFY(attempt.timeOut());
        QVERIFY(!attempt.requested);
        QVERIFY(!attempt.timeOut());
        QVERIFY(!attempt.isComplete(now, now)); // too late now
    }

    void anOutageIsToldOnce()
    {
        ConnectionAttempt attempt = completeAttempt();
        QVERIFY(attempt.timeOut());
        attempt.request();
        attempt.begin();
        QVERIFY(!attempt.timeOut());
        QVERIFY(!attempt.requested);
        attempt.setConnected();
        attempt.setDisconnected();
        attempt.request();
        QVERIFY(attempt.timeOut()); // another one
    }

    void isUnderWayOrAwaited()
    {
        ConnectionAttempt attempt;
        QVERIFY(!attempt.isAwaited()); // nobody wants a link
        attempt.wanted = true;
        attempt.socketReady = true;
        QVERIFY(attempt.isAwaited());
        attempt.request();
        QVERIFY(!attempt.isAwaited());
        QVERIFY(!attempt.isUnderWay());
        attempt.prolonged = true;
        attempt.begin();
        QVERIFY(!attempt.prolonged);
        QVERIFY(attempt.isUnderWay());
        attempt.setConnected();
        QVERIFY(!attempt.isUnderWay());
        QVERIFY(!attempt.isAwaited());
        attempt.setDisconnected();
        QVERIFY(attempt.isAwaited());
    }

    void timeOutOfALinkThatIsUpIsNone()
    {
        ConnectionAttempt attempt = completeAttempt();
        attempt.connected = true;
        QVERIFY(!attempt.timeOut());
    }
};

TARVO_TEST(ConnectionAttemptTest)
#include "ConnectionAttemptTest.moc"
