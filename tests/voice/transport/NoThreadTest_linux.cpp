#include "TransportStage.h"

#include "support/NoThreads_linux.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::test;

/// Linux only: how a system without threads is made there.
class VoiceWithoutThreadTest : public QObject
{
    Q_OBJECT

private slots:
    void aConnectionWithoutThreadsIsOver()
    {
        Session session;
        session.client.connectToServer();
        session.client.waitForAttempts();
        {
            const NoThreads noThreads;
            TRY_COMPARE(session.order(),
                        (QStringList{u"connected"_qs, u"error: No thread is to be had for the voice connection"_qs,
                                     u"disconnected"_qs}));
        }
        QVERIFY(session.peer.expect(token.toUtf8()));
        QCOMPARE(session.peer.untilClosed(), QByteArray());
        session.order().clear();
        QVERIFY(session.open());
    }
};

TARVO_TEST(VoiceWithoutThreadTest)
#include "NoThreadTest_linux.moc"
