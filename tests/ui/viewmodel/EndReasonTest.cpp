#include "ui/viewmodel/EndReason.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QTest>

using tarvo::test::columns;
using tarvo::ui::reasonOfEnd;
using tarvo::ui::shownReason;
using tarvo::ui::tellingError;
using tarvo::ui::ToldError;

/// The words for what went wrong, and which of two errors explains an end.
class EndReasonTest : public QObject
{
    Q_OBJECT

private slots:
    void reasons_data()
    {
        columns<QString, QString>("told", "shown");
        QTest::newRow("the server's words stay")
            << u"Network Error: Callsign in use"_qs << u"服务器报告：Callsign in use"_qs;
        QTest::newRow("a server that speaks as the program does")
            << u"Network Error: JWT token expired"_qs << u"服务器报告：JWT token expired"_qs;
        QTest::newRow("refused") << u"ConnectionRefusedError: Connection refused"_qs << u"服务器拒绝了连接。"_qs;
        QTest::newRow("closed") << u"RemoteHostClosedError: The remote host closed the connection"_qs
                                << u"服务器关闭了连接。"_qs;
        QTest::newRow("no such name") << u"HostNotFoundError: Host not found"_qs << u"找不到服务器的地址。"_qs;
        QTest::newRow("no such name, looked up before")
            << u"Network server address returned null, possibly due to a failed DNS lookup."_qs
            << u"找不到服务器的地址。"_qs;
        QTest::newRow("no answer") << u"SocketTimeoutError: timed out"_qs << u"服务器没有应答。"_qs;
        QTest::newRow("no network") << u"NetworkError: unreachable"_qs << u"网络不通，请检查本机的网络连接。"_qs;
        QTest::newRow("another of the socket's errors")
            << u"SocketAccessError: Permission denied"_qs << u"网络出错（SocketAccessError）。"_qs;
        QTest::newRow("one without words") << u"UnknownSocketError"_qs << u"网络出错（UnknownSocketError）。"_qs;
        QTest::newRow("none of the socket's") << u"TokenError: bad"_qs << u"TokenError: bad"_qs;
        QTest::newRow("token") << u"Network authentication error: 403"_qs << u"网络认证失败：403"_qs;
        QTest::newRow("no login token") << u"Network authentication error: No JWT token found, get FSD token fail"_qs
                                        << u"网络认证失败：没有登录令牌，请退出后重新登录。"_qs;
        QTest::newRow("old login token")
            << u"Network authentication error: JWT token expired and refresh token is unavailable"_qs
            << u"网络认证失败：登录已过期，请退出后重新登录。"_qs;
        QTest::newRow("no new login token")
            << u"Network authentication error: Refresh token failed: Network error: Connection refused"_qs
            << u"网络认证失败：无法更新登录令牌：账户服务出错：Connection refused"_qs;
        QTest::newRow("a reason in itself") << u"Refresh token failed: "_qs.repeated(4) + u"x"_qs
                                            << u"无法更新登录令牌："_qs.repeated(3) + u"Refresh token failed: x"_qs;
        QTest::newRow("killed") << u"Forcibly disconnected from network: bye %1"_qs << u"被强制断开：bye %1"_qs;
        QTest::newRow("killed without a word") << u"Forcibly disconnected from network."_qs << u"被强制断开。"_qs;
        QTest::newRow("busy") << u"Already connected or connecting to network. Disconnect before changing callsign."_qs
                              << u"已连接或正在连接网络，请先断开再更换呼号。"_qs;
        QTest::newRow("no callsign") << u"Callsign and Type Code are required."_qs << u"需要填写呼号和机型代码。"_qs;
        QTest::newRow("Chinese already") << u"飞行员模式连接 FSD 前"_qs << u"飞行员模式连接 FSD 前"_qs;
        QTest::newRow("something else") << u"what Network Error: is"_qs << u"what Network Error: is"_qs;
        QTest::newRow("nothing") << QString() << QString();
    }
    void reasons()
    {
        QFETCH(QString, told);
        QTEST(shownReason(told), "shown");
    }

    void voice_data()
    {
        columns<QString, QString>("told", "shown");
        const auto row = [](const char *name, const QString &tail, const QString &shown) {
            QTest::newRow(name) << u"Failed to connect to server at v.test "_qs + tail
                                << u"无法连接语音服务器 v.test"_qs + shown;
        };
        row("refused", u"(ip=127.0.0.1): Connection refused (errno=111)"_qs, u"：服务器拒绝了连接。"_qs);
        row("refused on Windows", u"(ip=::1): No connection (errno=10061)"_qs, u"：服务器拒绝了连接。"_qs);
        row("no answer", u"(ip=10.0.0.1): Connection timed out (errno=110)"_qs, u"：服务器没有应答。"_qs);
        row("no way", u"(ip=10.0.0.1): No route to host (errno=113)"_qs, u"：网络不通，请检查本机的网络连接。"_qs);
        row("another error", u"(ip=10.0.0.1): Bad (very) (errno=9)"_qs, u"：错误 9。"_qs);
        row("other words", u"- why?"_qs, u" - why?"_qs);
        QTest::newRow("no such name") << u"Failed to resolve server address v.test"_qs
                                      << u"找不到语音服务器的地址：v.test"_qs;
        QTest::newRow("no thread") << u"No thread is to be had for the voice connection"_qs
                                   << u"系统资源不足，无法建立语音连接。"_qs;
    }
    void voice()
    {
        QFETCH(QString, told);
        QTEST(shownReason(told), "shown");
    }

    void whichErrorTells_data()
    {
        columns<QString, QString, bool>("before", "next", "isFirst");
        const QString token = u"Network authentication error: banned"_qs;
        const QString server = u"Network Error: Callsign in use"_qs;
        const QString forced = u"Forcibly disconnected from network: banned"_qs;
        const QString out = u"Forcibly disconnected from network."_qs;
        const QString closed = u"RemoteHostClosedError: closed"_qs;
        const QString line = u"Invalid field count. (Raw packet: #TM)"_qs;
        QTest::newRow("the only one") << QString() << forced << false;
        QTest::newRow("refused token") << token << forced << true;
        QTest::newRow("refused token without a reason") << token << out << true;
        QTest::newRow("close behind a refused token") << token << closed << true;
        QTest::newRow("close behind a server's error") << server << closed << true;
        QTest::newRow("close behind a broken line") << line << closed << false;
        QTest::newRow("broken line behind a server's error") << server << line << true;
        QTest::newRow("another of the server's errors") << server << u"Network Error: bad"_qs << false;
        QTest::newRow("kill behind a server's error") << server << forced << false;
        QTest::newRow("kill without a word behind a server's error") << server << out << true;
        QTest::newRow("kill behind a close") << closed << forced << false;
        QTest::newRow("kill without a word behind a close") << closed << out << false;
    }
    void whichErrorTells()
    {
        QFETCH(QString, before);
        QFETCH(QString, next);
        QFETCH(bool, isFirst);
        const ToldError first{before, 1000};
        const ToldError second{next, 11'000};
        QCOMPARE(tellingError(first, second), isFirst ? first : second);
        const ToldError later{next, 11'001};
        QCOMPARE(tellingError(first, later), later); // what was told long ago explains nothing
    }

    void anErrorExplainsAnEndThatFollowsSoon_data()
    {
        columns<qint64, QString>("now", "reason");
        QTest::newRow("at once") << 1000LL << u"服务器报告：bye"_qs;
        QTest::newRow("10 s later") << 11'000LL << u"服务器报告：bye"_qs;
        QTest::newRow("later still") << 11'001LL << u"与服务器的连接中断。"_qs;
    }
    void anErrorExplainsAnEndThatFollowsSoon()
    {
        QFETCH(qint64, now);
        QTEST(reasonOfEnd({u"Network Error: bye"_qs, 1000}, now), "reason");
        for (const QString &nothing : {QString(), u"Invalid field count. (Raw packet: #TM)"_qs})
            QCOMPARE(reasonOfEnd({nothing, 1000}, now), u"与服务器的连接中断。"_qs);
    }
};

TARVO_TEST(EndReasonTest)
#include "EndReasonTest.moc"
