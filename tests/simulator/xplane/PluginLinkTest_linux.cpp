#include "simulator/xplane/MessagePool.h"
#include "simulator/xplane/PluginLink.h"
#include "support/Patience.h"
#include "support/PluginPeer.h"
#include "support/TestRegistry.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <malloc.h>
#include <pthread.h>

using namespace tarvo::simulator::xplane;

namespace {

/// While it lives, no thread can be started: each asks for a larger stack than there are addresses.
class ThreadShortage
{
public:
    ThreadShortage()
    {
        pthread_getattr_default_np(&m_usual);
        pthread_attr_t huge;
        pthread_attr_init(&huge);
        pthread_attr_setstacksize(&huge, std::size_t{1} << 47);
        pthread_setattr_default_np(&huge);
        pthread_attr_destroy(&huge);
    }
    ~ThreadShortage()
    {
        pthread_setattr_default_np(&m_usual);
        pthread_attr_destroy(&m_usual);
    }
    ThreadShortage(const ThreadShortage &) = delete;
    ThreadShortage &operator=(const ThreadShortage &) = delete;

private:
    pthread_attr_t m_usual{};
};

} // namespace

/// What can only be shown with this system's own means.
class PluginLinkLinuxTest : public QObject
{
    Q_OBJECT

private slots:
    void opensWithoutAThreadToReceive()
    {
        const tarvo::test::PluginAddressDir address;
        limitMessagePool();
        PluginLink link;
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("receive thread does not start")));
        {
            const ThreadShortage shortage;
            link.open({.url = address.url(), .local = true});
        }
        QVERIFY(link.isReady()); // attempts end in their time-out
        tarvo::test::PluginPeer plugin(address.url());
        link.send(QByteArray("x"));
        TRY_COMPARE(plugin.messages(), QList<QByteArray>{"x"});
    }

    /// The leak report is told to look away from the library's messages; so they are counted here.
    void messagesToNobodyTakeNoMemory()
    {
        const tarvo::test::PluginAddressDir address;
        PluginLink link;
        link.open({.url = address.url(), .local = true});
        const QByteArray message(1000, 'x');
        for (int i = 0; i < 8192; ++i) // the socket keeps these
            link.send(message);
        const std::size_t before = mallinfo2().uordblks;
        QTest::ignoreMessage(QtWarningMsg, "X-Plane plugin does not read: messages are lost until it does");
        for (int i = 0; i < 10'000; ++i) // and the outbox some of these, until it gives up
            link.send(message);
        const std::size_t after = mallinfo2().uordblks;
        QVERIFY2(after < before + 1'000'000, qPrintable(QString::number(after - before)));
    }
};

TARVO_TEST(PluginLinkLinuxTest)
#include "PluginLinkTest_linux.moc"
