#include "simulator/xplane/PipeWatch.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <nng/nng.h>
#include <nng/protocol/pair1/pair.h>

#include <atomic>

using tarvo::simulator::xplane::PipeWatch;

class PipeWatchTest : public QObject
{
    Q_OBJECT

private slots:
    void anEndThatOvertakesTheBeginningLeavesNothingUp()
    {
        PipeWatch watch;
        const QSignalSpy changed(&watch, &PipeWatch::changed);
        watch.onRemoved(7);
        watch.onAdded(7);
        QVERIFY(!watch.isConnected());
        QCOMPARE(changed.size(), 0);
        watch.onAdded(8);
        QVERIFY(watch.isConnected());
        watch.onRemoved(9);
        QVERIFY(watch.isConnected());
        watch.onRemoved(8);
        QVERIFY(!watch.isConnected());
        QCOMPARE(changed.size(), 2);
    }

    /// A pair socket refuses a second pipe, and nng tells of its end all the same.
    void aPipeThatNeverComesUpChangesNothing()
    {
        const QTemporaryDir folder;
        const QByteArray url = "ipc://" + folder.filePath(QStringLiteral("plugin")).toUtf8();
        nng_socket plugin;
        nng_socket socket;
        QCOMPARE(nng_pair1_open(&plugin), 0);
        QCOMPARE(nng_pair1_open(&socket), 0);
        QCOMPARE(nng_listen(plugin, url.constData(), nullptr, 0), 0);
        PipeWatch watch(socket);
        QList<bool> changes;
        connect(
            &watch, &PipeWatch::changed, this, [&changes](bool connected) { changes << connected; },
            Qt::QueuedConnection);
        std::atomic<int> attempts = 0;
        nng_pipe_notify(
            socket, NNG_PIPE_EV_ADD_PRE,
            [](nng_pipe, nng_pipe_ev, void *count) { ++*static_cast<std::atomic<int> *>(count); }, &attempts);

        QCOMPARE(nng_dial(socket, url.constData(), nullptr, NNG_FLAG_NONBLOCK), 0);
        TRY_COMPARE(changes, QList<bool>{true});
        nng_dialer second;
        QCOMPARE(nng_dialer_create(&second, socket, url.constData()), 0);
        nng_dialer_set_ms(second, NNG_OPT_RECONNMINT, 10);
        QCOMPARE(nng_dialer_start(second, NNG_FLAG_NONBLOCK), 0);
        TRY_VERIFY(attempts >= 4); // the first three of the second dialer are over by the fourth
        QVERIFY(watch.isConnected());
        nng_dialer_close(second);
        nng_close(plugin);
        TRY_COMPARE(changes, (QList<bool>{true, false}));
        QVERIFY(!watch.isConnected());
        nng_close(socket);
    }
};

TARVO_TEST(PipeWatchTest)
#include "PipeWatchTest.moc"
