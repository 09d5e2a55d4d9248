#include "simulator/xplane/SocketCloser.h"
#include "support/PluginPeer.h"
#include "support/TestRegistry.h"

#include <nng/protocol/pair1/pair.h>

#include <QTest>

using namespace tarvo::simulator::xplane;
using tarvo::test::PluginPeer;
using namespace std::chrono_literals;

class SocketCloserTest : public QObject
{
    Q_OBJECT

private slots:
    void closersAreWaitedFor()
    {
        QVERIFY(waitForClosers(5s)); // those of other tests
        const tarvo::test::PluginAddressDir address;
        PluginPeer plugin(address.url());
        nng_socket socket;
        QCOMPARE(nng_pair1_open(&socket), 0);
        QCOMPARE(nng_dial(socket, address.url().toUtf8().constData(), nullptr, 0), 0);
        QTRY_VERIFY(plugin.hasClient());
        closeInBackground(socket);
        QVERIFY(!waitForClosers(0ms)); // it takes 20 ms of silence at least
        QVERIFY(waitForClosers(5s));
        QTRY_VERIFY(!plugin.hasClient());
    }
};

TARVO_TEST(SocketCloserTest)
#include "SocketCloserTest.moc"
