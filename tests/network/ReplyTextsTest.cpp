#include "network/ReplyTexts.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::network;

/// Every error branch; the common ones are also met over real sockets.
class ReplyTextsTest : public QObject
{
    Q_OBJECT

private:
    static ReplyOutcome outcome(int error)
    {
        return {.error = static_cast<QNetworkReply::NetworkError>(error),
                .errorString = QStringLiteral("100%2 broken"),
                .httpStatus = 502,
                .url = QUrl(QStringLiteral("http://127.0.0.1:8080/api/users/sessions")),
                .body = {}};
    }

private slots:
    void errors_data()
    {
        QTest::addColumn<int>("error");
        QTest::addColumn<QString>("login");
        QTest::addColumn<QString>("refresh");
        QTest::newRow("none") << int(QNetworkReply::NoError) << QStringLiteral("登录失败：服务器返回了无效的响应")
                              << QStringLiteral("网络错误: 100%2 broken");
        QTest::newRow("refused") << int(QNetworkReply::ConnectionRefusedError)
                                 << QStringLiteral("无法连接到服务器，请检查网络连接")
                                 << QStringLiteral("无法连接到服务器");
        QTest::newRow("host not found") << int(QNetworkReply::HostNotFoundError)
                                        << QStringLiteral("无法找到服务器，请检查服务器地址")
                                        << QStringLiteral("无法找到服务器");
        QTest::newRow("time-out") << int(QNetworkReply::TimeoutError) << QStringLiteral("连接超时，请稍后重试")
                                  << QStringLiteral("连接超时");
        QTest::newRow("transfer time-out") << int(QNetworkReply::OperationCanceledError)
                                           << QStringLiteral("连接超时，请稍后重试") << QStringLiteral("连接超时");
        QTest::newRow("content not found")
            << int(QNetworkReply::ContentNotFoundError)
            << QStringLiteral("服务器接口不存在 (404)\n请求地址: http://127.0.0.1:8080/api/users/sessions")
            << QStringLiteral("网络错误: 100%2 broken");
        QTest::newRow("authentication") << int(QNetworkReply::AuthenticationRequiredError)
                                        << QStringLiteral("网络错误 (502): 100%2 broken")
                                        << QStringLiteral("令牌已过期，请重新登录");
        QTest::newRow("other") << int(QNetworkReply::UnknownServerError)
                               << QStringLiteral("网络错误 (502): 100%2 broken")
                               << QStringLiteral("网络错误: 100%2 broken");
    }

    void errors()
    {
        QFETCH(int, error);
        QTEST(ReplyTexts::loginError(outcome(error)), "login");
        QTEST(ReplyTexts::refreshError(outcome(error)), "refresh");
    }

    void codes_data()
    {
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("text");
        QTest::newRow("wrong password") << QStringLiteral("WRONG_USERNAME_OR_PASSWORD")
                                        << QStringLiteral("用户名或密码错误");
        QTest::newRow("database") << QStringLiteral("DATABASE_ERROR") << QStringLiteral("服务器数据库错误，请稍后重试");
        QTest::newRow("other") << QStringLiteral("BANNED_%1") << QStringLiteral("登录失败 (错误代码: BANNED_%1)");
        QTest::newRow("lower case is another code")
            << QStringLiteral("database_error") << QStringLiteral("登录失败 (错误代码: database_error)");
        QTest::newRow("empty") << QString() << QStringLiteral("登录失败 (错误代码: )");
    }

    void codes()
    {
        QFETCH(QString, code);
        QTEST(ReplyTexts::loginCode(code), "text");
    }
};

TARVO_TEST(ReplyTextsTest)
#include "ReplyTextsTest.moc"
