#include "SessionStage.h"

#include "support/LogCapture.h"
#include "support/NoThreads_linux.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::test;

/// Linux only: how a system without threads is made there.
class SessionWithoutThreadTest : public QObject
{
    Q_OBJECT

private slots:
    void anAttemptWithoutAThreadFails()
    {
        SessionStage stage;
        const LogCapture log;
        const QString why = u"No thread is to be had for the voice connection"_qs;
        {
            const NoThreads noThreads;
            stage.client->connectToServer(voiceToken);
        }
        TRY_COMPARE(stage.events, (QStringList{u"Connecting"_qs, u"error: "_qs + why}));
        QVERIFY(log.contains(why));
        QVERIFY(stage.connectToServer()); // another may begin
    }
};

TARVO_TEST(SessionWithoutThreadTest)
#include "NoThreadTest_linux.moc"
