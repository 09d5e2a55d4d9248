#include "SessionBench.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <limits>

using namespace tarvo::test;
using namespace tarvo::simulator::msfs;

/// The model's own events for its speed brakes.
class SessionInputEventsTest : public QObject
{
    Q_OBJECT

private slots:
    void areAskedFor()
    {
        OpenBench bench;
        bench.session.enumerateInputEvents();
        QCOMPARE(bench.standIn.calls(), QStringList(line("EnumerateInputEvents 60000")));
    }

    void refusedQuestionIsAWarning()
    {
        OpenBench bench;
        bench.standIn.failNext(line("EnumerateInputEvents"));
        bench.session.enumerateInputEvents();
        QCOMPARE(bench.log.texts(QtWarningMsg),
                 QStringList(line("Failed to enumerate SimConnect input events (HRESULT: 0x80004005)")));
        QCOMPARE(bench.errors.size(), 0);
    }

    void thoseOfSpeedbrakesAreSubscribed()
    {
        OpenBench bench;
        bench.send(message::inputEvents(60000, {{"HANDLING_SPOILERS", 1, 0},
                                                {"FLAPS_LEVER", 2, 0},
                                                {"SPEED BRAKE", 6, 0},
                                                {"", 7, 0},
                                                {"LEVER_SpeedBrake", 3, 0},
                                                {"speed_brake_arm", 4, 0},
                                                {"SPOILER_TEXT", 5, 1},
                                                {"SPOILER_AGAIN", 1, 0}}));
        QCOMPARE(bench.standIn.calls(), lines("SubscribeInputEvent 1\nSubscribeInputEvent 3\nSubscribeInputEvent 4"));
        QCOMPARE(bench.log.texts(QtInfoMsg).last(4), lines("Subscribed MSFS input event: HANDLING_SPOILERS\n"
                                                           "Subscribed MSFS input event: LEVER_SpeedBrake\n"
                                                           "Subscribed MSFS input event: speed_brake_arm\n"
                                                           "Subscribed 3 MSFS speedbrake/spoiler input events"));
    }

    void subscribedOnesAreNotSubscribedAgain()
    {
        OpenBench bench;
        const QByteArray events = message::inputEvents(60000, {{"SPOILERS", 1, 0}});
        bench.send(events);
        const auto logged = bench.log.texts().size();
        bench.send(events);
        QCOMPARE(bench.standIn.calls().size(), 1);
        QCOMPARE(bench.log.texts().size(), logged);
        bench.session.close();
        bench.open();
        bench.send(events);
        QCOMPARE(bench.standIn.calls().size(), 1);
    }

    void nothingOfInterest_data()
    {
        QTest::addColumn<QByteArray>("events");
        QTest::newRow("none") << message::inputEvents(60000, {});
        QTest::newRow("others") << message::inputEvents(60000, {{"FLAPS", 1, 0}});
        QTest::newRow("another request") << message::inputEvents(60001, {{"SPOILERS", 1, 0}});
    }

    void nothingOfInterest()
    {
        QFETCH(QByteArray, events);
        OpenBench bench;
        const auto logged = bench.log.texts().size();
        bench.send(events);
        QCOMPARE(bench.standIn.calls(), QStringList());
        QCOMPARE(bench.log.texts().size(), logged);
    }

    void refusedSubscriptionIsAWarning()
    {
        OpenBench bench;
        bench.standIn.failNext(line("SubscribeInputEvent"));
        bench.send(message::inputEvents(60000, {{"SPOILERS_1", 1, 0}, {"SPOILERS_2", 2, 0}}));
        QCOMPARE(bench.log.texts(QtWarningMsg),
                 QStringList(line("Failed to subscribe MSFS input event SPOILERS_1 (HRESULT: 0x80004005)")));
        QCOMPARE(bench.log.texts(QtInfoMsg).last(), line("Subscribed 1 MSFS speedbrake/spoiler input events"));
        QCOMPARE(bench.errors.size(), 0);
        bench.standIn.takeCalls();
        bench.send(message::inputEvents(60000, {{"SPOILERS_1", 1, 0}}));
        QCOMPARE(bench.standIn.calls(), QStringList(line("SubscribeInputEvent 1")));
    }

    void libraryThatCannotSubscribe()
    {
        SessionBench bench;
        bench.standIn.setMissing({line("SimConnect_SubscribeInputEvent")});
        bench.open();
        bench.send(message::inputEvents(60000, {{"SPOILERS", 1, 0}}));
        QCOMPARE(bench.standIn.calls(), QStringList());
    }

    void valuesAreTold_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<bool>("told");
        QTest::newRow("subscribed") << message::inputEventValue(1, 0, 75.5) << true;
        QTest::newRow("another hash") << message::inputEventValue(2, 0, 75.5) << false;
        QTest::newRow("text") << message::inputEventValue(1, 1, 75.5) << false;
        QTest::newRow("no number") << message::inputEventValue(1, 0, std::numeric_limits<double>::infinity()) << false;
    }

    void valuesAreTold()
    {
        QFETCH(QByteArray, value);
        QFETCH(bool, told);
        OpenBench bench;
        bench.send(message::inputEvents(60000, {{"HANDLING_SPOILERS", 1, 0}}));
        const QSignalSpy values(&bench.session, &SimConnectSession::inputEventValueChanged);
        bench.send(value);
        QCOMPARE(values, told ? (QList<QVariantList>{{line("HANDLING_SPOILERS"), 75.5}}) : QList<QVariantList>());
    }
};

TARVO_TEST(SessionInputEventsTest)
#include "SessionInputEventsTest.moc"
