#include "simulator/xplane/PluginMessages.h"
#include "support/Patience.h"
#include "support/PluginPeer.h"
#include "support/TestRegistry.h"

#include <QProcess>
#include <QTest>

using namespace tarvo::simulator::xplane;
using tarvo::test::PluginPeer;

class ProgramExitTest : public QObject
{
    Q_OBJECT

private slots:
    void lastWordsOfAProgramThatEndsAtOnce()
    {
        constexpr int messages = 20;
        const tarvo::test::PluginAddressDir address;
        PluginPeer plugin(address.url());
        QProcess program;
        program.start(QStringLiteral(TARVO_LAST_WORDS_PROGRAM), {address.url(), QString::number(messages)});
        TRY_VERIFY(plugin.hasClient());
        plugin.send(QStringLiteral("ADDED"), {QStringLiteral("A")});
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), 0); // it has waited for its closer
        QList<QByteArray> expected;
        for (int i = 0; i < messages; ++i)
            expected.append(message::heartbeat(QString::number(i)));
        TRY_COMPARE(plugin.messages(), expected);
    }
};

TARVO_TEST(ProgramExitTest)
#include "ProgramExitTest.moc"
