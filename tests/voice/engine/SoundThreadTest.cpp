#include "voice/engine/SoundThread.h"
#include "voice/engine/Mailbox.h"

#include "support/LogCapture.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <future>
#include <memory>
#include <vector>

using namespace tarvo::voice;

class SoundThreadTest : public QObject
{
    Q_OBJECT

private slots:
    void tasksAreDoneInOrder()
    {
        SoundThread thread;
        std::vector<int> done;
        for (int i = 0; i < 5; ++i)
            QVERIFY(thread.post([&done, i] { done.push_back(i); }));
        QVERIFY(thread.waitUntilIdle(std::chrono::milliseconds(tarvo::test::patienceMs)));
        QCOMPARE(done, (std::vector<int>{0, 1, 2, 3, 4}));
    }

    void logTellsOfATaskThatHangs()
    {
        SoundThread thread(std::chrono::milliseconds(10));
        tarvo::test::LogCapture log;
        std::promise<void> release;
        thread.post([hang = release.get_future().share()] { hang.wait(); });
        TRY_VERIFY(log.contains(QStringLiteral("The sound system hasn't answered for 0.01 s")));
        int dropped = 0;
        for (int i = 0; i < 250; ++i)
            dropped += !thread.post([] {});
        QCOMPARE(dropped, 50);
        QVERIFY(log.contains(QStringLiteral("The sound system doesn't answer: a request to it is dropped")));
        release.set_value();
        QVERIFY(thread.waitUntilIdle(std::chrono::milliseconds(tarvo::test::patienceMs)));
        QVERIFY(thread.post([] {}));
    }

    void mailboxCallsOnTheReceiversThread()
    {
        SoundThread thread;
        QObject receiver;
        const auto mailbox = std::make_shared<Mailbox>(&receiver);
        std::vector<int> got;
        const auto send = [&](int number) {
            thread.post([mailbox, &got, number] { mailbox->send([&got, number] { got.push_back(number); }); });
        };
        send(1);
        send(2);
        TRY_COMPARE(got, (std::vector<int>{1, 2}));
        mailbox->close();
        send(3);
        QVERIFY(thread.waitUntilIdle(std::chrono::milliseconds(tarvo::test::patienceMs)));
        QCoreApplication::processEvents();
        QCOMPARE(got.size(), std::size_t(2));
    }
};

TARVO_TEST(SoundThreadTest)
#include "SoundThreadTest.moc"
