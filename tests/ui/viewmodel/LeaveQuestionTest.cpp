#include "ui/viewmodel/LeaveQuestion.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using tarvo::ui::LeaveQuestion;

/// What is asked before a connection is ended, and when nothing is.
class LeaveQuestionTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_leave = std::make_unique<LeaveQuestion>(); }

    void withoutAConnectionNothingIsAsked()
    {
        const QSignalSpy disconnects(m_leave.get(), &LeaveQuestion::disconnectConfirmed);
        const QSignalSpy logOuts(m_leave.get(), &LeaveQuestion::logOutConfirmed);
        const QSignalSpy closes(m_leave.get(), &LeaveQuestion::closeConfirmed);
        m_leave->disconnectFromNetwork();
        m_leave->logOut();
        m_leave->close();
        QCOMPARE(disconnects.size() + logOuts.size() + closes.size(), 3);
        QVERIFY(!m_leave->isOpen());
    }

    void asksAndDoesIt_data()
    {
        QTest::addColumn<int>("what");
        QTest::addColumn<QString>("action");
        QTest::newRow("disconnect") << 0 << u"断开连接"_qs;
        QTest::newRow("log out") << 1 << u"退出登录"_qs;
        QTest::newRow("close") << 2 << u"关闭"_qs;
    }
    void asksAndDoesIt()
    {
        QFETCH(int, what);
        m_leave->setOnline(u"CES2352"_qs);
        const QSignalSpy spies[] = {{m_leave.get(), &LeaveQuestion::disconnectConfirmed},
                                    {m_leave.get(), &LeaveQuestion::logOutConfirmed},
                                    {m_leave.get(), &LeaveQuestion::closeConfirmed}};
        ask(what);
        QVERIFY(m_leave->isOpen());
        QTEST(m_leave->actionText(), "action");
        QVERIFY(m_leave->text().startsWith(u"CES2352 "_qs));
        m_leave->accept(false);
        QVERIFY(!m_leave->isOpen());
        for (int i = 0; i < 3; ++i)
            QCOMPARE(spies[i].size(), i == what ? 1 : 0);
        ask(what);
        QVERIFY(m_leave->isOpen()); // anew each time
    }

    void neverAgainCountsForAll()
    {
        m_leave->setOnline(u"CES2352"_qs);
        m_leave->disconnectFromNetwork();
        m_leave->accept(true);
        const QSignalSpy closes(m_leave.get(), &LeaveQuestion::closeConfirmed);
        m_leave->close();
        QCOMPARE(closes.size(), 1);
        QVERIFY(m_leave->isSilenced());
        LeaveQuestion next;
        next.setOnline(u"CES2352"_qs);
        QVERIFY(next.mustAsk());
        next.setSilenced(m_leave->isSilenced());
        QVERIFY(!next.mustAsk());
    }

    void aNoIsNotRemembered()
    {
        m_leave->setOnline(u"CES2352"_qs);
        const QSignalSpy logOuts(m_leave.get(), &LeaveQuestion::logOutConfirmed);
        m_leave->logOut();
        m_leave->reject();
        QVERIFY(!m_leave->isOpen() && m_leave->mustAsk());
        m_leave->accept(false); // nothing is open
        QCOMPARE(logOuts.size(), 0);
    }

    void theQuestionGoesWithTheConnection()
    {
        m_leave->setOnline(u"CES2352"_qs);
        m_leave->disconnectFromNetwork();
        const QSignalSpy disconnects(m_leave.get(), &LeaveQuestion::disconnectConfirmed);
        m_leave->setOnline({});
        QVERIFY(!m_leave->isOpen());
        QCOMPARE(disconnects.size(), 0);
    }

private:
    void ask(int what)
    {
        if (what == 0)
            m_leave->disconnectFromNetwork();
        else if (what == 1)
            m_leave->logOut();
        else
            m_leave->close();
    }

    std::unique_ptr<LeaveQuestion> m_leave;
};

TARVO_TEST(LeaveQuestionTest)
#include "LeaveQuestionTest.moc"
