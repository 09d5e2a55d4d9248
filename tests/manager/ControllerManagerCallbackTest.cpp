#include "manager/ControlledSession.h"
#include "support/TestRegistry.h"

using namespace tarvo;
using namespace tarvo::test;
using tarvo::manager::ControllerManager;
using tarvo::manager::NetworkManager;

/// The list at the ends of sessions, with other simulators, and with listeners that come back.
class ControllerManagerCallbackTest : public QObject
{
    Q_OBJECT

private slots:
    void aConnectionBeginsAndEndsWithAnEmptyList()
    {
        SimulatedSession s;
        QVERIFY(!s.timer()->isActive());
        QCOMPARE(s.timer()->interval(), 1000);
        s.report(twr, 118500);
        s.takeChanges();
        emit s.manager->networkConnected(u"AB1"_qs);
        QVERIFY(s.timer()->isActive());
        QCOMPARE(s.callsigns(), QStringList());
        s.report(twr, 118500);
        QCOMPARE(s.takeChanges(), QStringList{u"added ZBAA_TWR 118500 Unknown"_qs});
        emit s.manager->networkDisconnected(false);
        QVERIFY(!s.timer()->isActive());
        QCOMPARE(s.callsigns(), QStringList());
        QCOMPARE(s.takeChanges(), QStringList()); // without a word
    }

    void aNewSimulatorTakesTheOldOnesPlace()
    {
        SimulatedSession s;
        s.report(twr, 118500);
        s.tune(118500, 0);
        const std::weak_ptr<FakeSimulator> old = s.sim;
        const auto next = std::make_shared<FakeSimulator>();
        s.manager->setSimulator(next);
        s.sim->takeCalls();
        s.tune(121700, 118500);
        QCOMPARE(s.sim->takeCalls(), QStringList()); // heard by nobody
        s.sim.reset();
        s.tick();
        // It has told no radio yet: what the other one had tuned says nothing about it.
        QCOMPARE(next->takeCalls(), (QStringList{u"setControllers 1"_qs, tuned(1, QString()), tuned(2, QString())}));
        emit next->radioStackStateChanged({.com1Frequency = 118500});
        QCOMPARE(next->takeCalls(), (QStringList{tuned(1, twr), tuned(2, QString())}));
        TRY_VERIFY(old.expired());
    }

    void aSimulatorThatWasThereBeforeIsHeard()
    {
        Session s;
        s.addSimulator();
        const ControllerManager controllers(s.manager, s.clock);
        emit s.sim->radioStackStateChanged({.com1Frequency = 118500});
        QCOMPARE(s.sim->takeCalls(), (QStringList{tuned(1, QString()), tuned(2, QString())}));
    }

    void aListenerMayEndTheConnection_data()
    {
        QTest::addColumn<bool>("atTick");
        QTest::newRow("while a station changes") << false;
        QTest::newRow("while stations go") << true;
    }

    void aListenerMayEndTheConnection()
    {
        QFETCH(bool, atTick);
        SimulatedSession s;
        s.report(u"A"_qs, 118500);
        s.report(u"B"_qs, 118500);
        s.leave(u"A"_qs);
        s.leave(u"B"_qs);
        s.takeChanges();
        s.sim->takeCalls();
        QObject::connect(&s.controllers, &ControllerManager::controllerDeleted, s.manager.get(),
                         [&s] { emit s.manager->networkDisconnected(false); });
        if (atTick)
            s.tick();
        else
            s.confirm(u"A"_qs);
        const QString deleted =
            atTick ? u"deleted A 118500 Unknown pending"_qs : u"deleted A 118500 Unknown valid pending"_qs;
        QCOMPARE(s.takeChanges(), QStringList{deleted});
        QCOMPARE(s.sim->takeCalls(), QStringList());
        QCOMPARE(s.callsigns(), QStringList());
    }

    void aListenerMayChangeTheList()
    {
        SimulatedSession s;
        s.report(u"A"_qs, 118500);
        s.report(u"B"_qs, 121700);
        s.leave(u"A"_qs);
        s.leave(u"B"_qs);
        int next = 0;
        QObject::connect(&s.controllers, &ControllerManager::controllerDeleted, s.manager.get(), [&s, &next] {
            for (int i = 0; i < 100; ++i)
                s.report(u"N%1"_qs.arg(++next), 118500);
        });
        s.tick();
        QCOMPARE(s.controllers.controllers().size(), 200);
        QVERIFY(!s.callsigns().contains(u"A"_qs) && !s.callsigns().contains(u"B"_qs));
    }

    void aSimulatorThatIsReplacedDuringTheTick()
    {
        ControlledSession s;
        auto busy = std::make_shared<BusySimulator>();
        const auto next = std::make_shared<FakeSimulator>();
        const std::weak_ptr<BusySimulator> watched = busy;
        busy->action = [&] { s.manager->setSimulator(next); };
        s.manager->setSimulator(std::move(busy));
        s.report(twr, 118500);
        s.tick();
        QCOMPARE(next->takeCalls(), (QStringList{tuned(1, QString()), tuned(2, QString())}));
        TRY_VERIFY(watched.expired());
    }

    void aSimulatorThatEndsTheConnectionDuringTheTick()
    {
        ControlledSession s;
        const auto busy = std::make_shared<BusySimulator>();
        busy->action = [&] { emit s.manager->networkDisconnected(false); };
        s.manager->setSimulator(busy);
        s.report(twr, 118500);
        emit busy->radioStackStateChanged({.com1Frequency = 118500});
        busy->takeCalls();
        s.tick();
        QCOMPARE(busy->takeCalls(), (QStringList{u"setControllers 1"_qs, tuned(1, QString()), tuned(2, QString())}));
    }
};

TARVO_TEST(ControllerManagerCallbackTest)
#include "ControllerManagerCallbackTest.moc"
