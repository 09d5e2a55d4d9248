#include "ui/viewmodel/ConnectionStatus.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QTest>

using namespace tarvo::ui;

namespace {

Link networkLink(bool connected, LinkState state, bool seen, bool wasUp = false)
{
    return {.section = u"server"_qs,
            .name = u"网络"_qs,
            .connected = connected,
            .state = state,
            .reason = u"为什么"_qs,
            .seen = seen,
            .wasUp = wasUp};
}

Link simulatorLink(bool connected, LinkState state, bool seen, bool wasUp = false)
{
    Link link = networkLink(connected, state, seen, wasUp);
    link.section = u"simulator"_qs;
    return link;
}

Link voiceLink(LinkState state, bool seen, bool wasUp)
{
    Link link = networkLink(state == LinkState::Ready, state, seen, wasUp);
    link.section = u"voice"_qs;
    return link;
}

} // namespace

/// The colours of the dots, and what the banner says.
class ConnectionStatusTest : public QObject
{
    Q_OBJECT

private slots:
    void looks_data()
    {
        tarvo::test::columns<LinkState, QString, QString>("state", "text", "tone");
        QTest::newRow("not there") << LinkState::Absent << u"未连接"_qs << u"quiet"_qs;
        QTest::newRow("connecting") << LinkState::Connecting << u"连接中..."_qs << u"pending"_qs;
        QTest::newRow("connected") << LinkState::Connected << u"已连接"_qs << u"good"_qs;
        QTest::newRow("disconnecting") << LinkState::Disconnecting << u"断开中..."_qs << u"pending"_qs;
        QTest::newRow("ended") << LinkState::Ended << u"已断开"_qs << u"quiet"_qs;
        QTest::newRow("forced out") << LinkState::ForcedOut << u"已断开（强制）"_qs << u"failed"_qs;
        QTest::newRow("failed") << LinkState::Failed << u"连接失败"_qs << u"failed"_qs;
        QTest::newRow("voice signs in") << LinkState::Authenticating << u"认证中..."_qs << u"pending"_qs;
        QTest::newRow("voice is ready") << LinkState::Ready << u"就绪"_qs << u"good"_qs;
        QTest::newRow("unknown") << LinkState::Unknown << u"未知状态"_qs << u"quiet"_qs;
        QTest::newRow("none of these") << static_cast<LinkState>(99) << u"未知状态"_qs << u"quiet"_qs;
    }
    void looks()
    {
        QFETCH(LinkState, state);
        QTEST(textOf(state), "text");
        QTEST(toneText(toneOf(state)), "tone");
    }

    void lines_data()
    {
        tarvo::test::columns<bool, LinkState, bool, QString, QString>("connected", "state", "seen", "tone", "reason");
        QTest::newRow("ended unseen") << false << LinkState::Ended << false << u"failed"_qs << u"为什么"_qs;
        QTest::newRow("ended and seen") << false << LinkState::Ended << true << u"quiet"_qs << QString();
        QTest::newRow("forced out, unseen") << false << LinkState::ForcedOut << false << u"failed"_qs << u"为什么"_qs;
        QTest::newRow("forced out, seen") << false << LinkState::ForcedOut << true << u"quiet"_qs << QString();
        QTest::newRow("again") << false << LinkState::Connecting << false << u"pending"_qs << QString();
        QTest::newRow("there again") << true << LinkState::Connected << false << u"good"_qs << QString();
    }
    void lines()
    {
        QFETCH(bool, connected);
        QFETCH(LinkState, state);
        QFETCH(bool, seen);
        const StatusLine line = lineOf(networkLink(connected, state, seen));
        QCOMPARE(line.word, textOf(state));
        QTEST(toneText(line.tone), "tone");
        QTEST(line.reason, "reason");
    }

    void banners_data()
    {
        tarvo::test::columns<Link, Link, Link, QString, QString>("network", "simulator", "voice", "section", "banner");
        const Link up = networkLink(true, LinkState::Connected, true, true);
        const Link lost = networkLink(false, LinkState::Ended, false, true);
        const Link failed = networkLink(false, LinkState::Absent, false, false);
        const Link simulatorThere = simulatorLink(true, LinkState::Connected, true, true);
        const Link simulatorLost = simulatorLink(false, LinkState::Absent, false, true);
        const Link simulatorAbsent = simulatorLink(false, LinkState::Failed, false, false);
        const Link voice = voiceLink(LinkState::Ready, true, true);
        const Link voiceLost = voiceLink(LinkState::Absent, false, true);
        const Link voiceFailed = voiceLink(LinkState::Failed, false, false);
        QTest::newRow("all is well") << up << simulatorThere << voice << u"dashboard"_qs << u"|"_qs;
        QTest::newRow("lost") << lost << simulatorThere << voice << u"dashboard"_qs
                              << u"网络已断开：为什么|重新连接"_qs;
        QTest::newRow("lost, on its page")
            << lost << simulatorThere << voice << u"server"_qs << u"网络已断开：为什么|重新连接"_qs;
        QTest::newRow("attempt failed") << failed << simulatorThere << voice << u"messages"_qs
                                        << u"网络连接失败：为什么|查看"_qs;
        QTest::newRow("attempt failed, on the page that tells")
            << failed << simulatorThere << voice << u"server"_qs << u"|"_qs;
        QTest::newRow("simulator lost") << up << simulatorLost << voice << u"messages"_qs
                                        << u"模拟器已断开：为什么|重新连接"_qs;
        QTest::newRow("the network goes first")
            << lost << simulatorLost << voice << u"messages"_qs << u"网络已断开：为什么|重新连接"_qs;
        QTest::newRow("a simulator that never was") << up << simulatorAbsent << voice << u"dashboard"_qs << u"|"_qs;
        QTest::newRow("voice lost") << up << simulatorThere << voiceLost << u"voice"_qs
                                    << u"语音已断开：为什么|重新连接"_qs;
        QTest::newRow("the simulator goes before voice")
            << up << simulatorLost << voiceLost << u"messages"_qs << u"模拟器已断开：为什么|重新连接"_qs;
        QTest::newRow("attempt at voice failed")
            << up << simulatorThere << voiceFailed << u"messages"_qs << u"语音连接失败：为什么|查看"_qs;
        QTest::newRow("attempt at voice failed, on the page that tells")
            << up << simulatorThere << voiceFailed << u"voice"_qs << u"|"_qs;
    }
    void banners()
    {
        QFETCH(Link, network);
        QFETCH(Link, simulator);
        QFETCH(Link, voice);
        QFETCH(QString, section);
        const Banner banner = bannerOf(network, simulator, voice, section);
        QTEST(banner.text + u'|' + banner.actionText, "banner");
    }
};

TARVO_TEST(ConnectionStatusTest)
#include "ConnectionStatusTest.moc"
