#include "Peers.h"
#include "support/ManualClock.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QJsonArray>
#include <QSignalSpy>

#include <memory>

using namespace tarvo::practice;
using namespace tarvo::test;

class AccountServiceTest : public QObject
{
    Q_OBJECT

    ManualClock m_clock;
    std::unique_ptr<PracticeNetwork> m_network;
    std::unique_ptr<WebPeer> m_web;

private slots:
    void init()
    {
        m_network = std::make_unique<PracticeNetwork>(quietSettings(), m_clock);
        QVERIFY2(m_network->start(), qPrintable(m_network->errorString()));
        m_web = std::make_unique<WebPeer>(m_network->account());
    }

    void signsIn()
    {
        const Answer answer = m_web->logIn();
        QCOMPARE(answer.status, 200);
        QCOMPARE(answer.code(), QStringLiteral("LOGIN_SUCCESS"));
        const QJsonObject user = answer.data().value(QLatin1String("user")).toObject();
        QCOMPARE(user.value(QLatin1String("cid")).toInt(), 1001);
        QCOMPARE(user.value(QLatin1String("username")).toString(), QStringLiteral("Lin Xiaozhou"));
        QCOMPARE(user.value(QLatin1String("solo_until")).toString(), QStringLiteral("1970-01-01T00:00:00Z"));
        QCOMPARE(user.size(), 16);
        qint64 cid = 0;
        const QByteArray token = answer.data().value(QLatin1String("token")).toString().toLatin1();
        QCOMPARE(m_network->tokens().check(TokenUse::Access, token, &cid), JsonWebToken::Verdict::Valid);
        QCOMPARE(cid, 1001);
    }

    void signsInByName()
    {
        QCOMPARE(m_web->logIn(QStringLiteral("lin xiaozhou")).code(), QStringLiteral("LOGIN_SUCCESS"));
    }

    void refusesAWrongLogin_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("wrong password") << QByteArray(R"({"username":"1001","password":"Practice"})");
        QTest::newRow("unknown user") << QByteArray(R"({"username":"9","password":"practice"})");
        QTest::newRow("no password") << QByteArray(R"({"username":"1001"})");
        QTest::newRow("password of another type") << QByteArray(R"({"username":"1001","password":1})");
        QTest::newRow("no object") << QByteArray("[1]");
        QTest::newRow("no JSON") << QByteArray("\xff\xfe{{{");
        QTest::newRow("nothing") << QByteArray();
    }

    void refusesAWrongLogin()
    {
        QFETCH(QByteArray, body);
        const Answer answer = m_web->post(QStringLiteral("/api/users/sessions"), body);
        QCOMPARE(answer.status, 401);
        QCOMPARE(answer.code(), QStringLiteral("WRONG_USERNAME_OR_PASSWORD"));
        QVERIFY(answer.data().isEmpty());
    }

    void refreshes_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<bool>("withUser");
        QTest::newRow("first") << QStringLiteral("?first=true") << true;
        QTest::newRow("later") << QString() << false;
        QTest::newRow("first is false") << QStringLiteral("?first=false") << false;
    }

    void refreshes()
    {
        QFETCH(QString, query);
        QFETCH(bool, withUser);
        const QString token = m_web->logIn().data().value(QLatin1String("flush_token")).toString();
        const Answer answer = m_web->get(QStringLiteral("/api/users/sessions") + query, token);
        QCOMPARE(answer.status, 200);
        QVERIFY(answer.data().contains(QLatin1String("token")));
        QVERIFY(answer.data().value(QLatin1String("flush_token")).toString() != token);
        QCOMPARE(answer.data().contains(QLatin1String("user")), withUser);
    }

    void issuesFsdTokens()
    {
        const Answer answer = m_web->get(QStringLiteral("/api/users/sessions/fsd"), m_web->token());
        QVERIFY(answer.json.value(QLatin1String("success")).toBool());
        QCOMPARE(answer.json.value(QLatin1String("error_msg")).toString(), QString());
        QCOMPARE(
            m_network->tokens().check(TokenUse::Fsd, answer.json.value(QLatin1String("token")).toString().toLatin1()),
            JsonWebToken::Verdict::Valid);
    }

    void refusesFsdTokensOnDemand()
    {
        m_network->account().setFsdTokenError(QStringLiteral("suspended"));
        const Answer answer = m_web->get(QStringLiteral("/api/users/sessions/fsd"), m_web->token());
        QVERIFY(!answer.json.value(QLatin1String("success")).toBool(true));
        QCOMPARE(answer.json.value(QLatin1String("error_msg")).toString(), QStringLiteral("suspended"));
    }

    void tellsHistoryProfileAndRanking()
    {
        const QString token = m_web->token();
        const Answer history = m_web->get(QStringLiteral("/api/users/histories/self"), token);
        QCOMPARE(history.code(), QStringLiteral("GET_USER_HISTORY"));
        QVERIFY(history.data().value(QLatin1String("pilots")).toArray().size() >= 5);
        const Answer profile = m_web->get(QStringLiteral("/api/users/profiles/self"), token);
        QCOMPARE(profile.code(), QStringLiteral("GET_USER_PROFILE"));
        QCOMPARE(profile.data().value(QLatin1String("total_pilot_time")), //
                 history.data().value(QLatin1String("total_pilot_time")));
        const Answer rating = m_web->get(QStringLiteral("/api/server/rating"), token);
        QCOMPARE(rating.code(), QStringLiteral("GET_TIME_RATING"));
        const QJsonArray pilots = rating.data().value(QLatin1String("pilots")).toArray();
        QCOMPARE(pilots.size(), 3);
        QCOMPARE(pilots.at(0).toObject().value(QLatin1String("username")).toString(), QStringLiteral("Chen Yuhang"));
        QVERIFY(pilots.at(0).toObject().value(QLatin1String("time")).toInteger() >
                pilots.at(1).toObject().value(QLatin1String("time")).toInteger());
    }

    void wantsAGoodToken_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("refresh") << QStringLiteral("/api/users/sessions");
        QTest::newRow("FSD token") << QStringLiteral("/api/users/sessions/fsd");
        QTest::newRow("history") << QStringLiteral("/api/users/histories/self");
        QTest::newRow("profile") << QStringLiteral("/api/users/profiles/self");
        QTest::newRow("ranking") << QStringLiteral("/api/server/rating");
    }

    void wantsAGoodToken()
    {
        QFETCH(QString, path);
        const QJsonObject data = m_web->logIn().data();
        const bool refreshing = path.endsWith(QLatin1String("sessions"));
        const QString good = data.value(refreshing ? QLatin1String("flush_token") : QLatin1String("token")).toString();
        const QString other = data.value(refreshing ? QLatin1String("token") : QLatin1String("flush_token")).toString();
        QCOMPARE(m_web->get(path, good).status, 200);
        QCOMPARE(m_web->get(path).status, 401);
        QCOMPARE(m_web->get(path, other).status, 401);
        QCOMPARE(m_web->get(path, good + QLatin1Char('x')).status, 401);
        m_clock.advance(31LL * 24 * 3600 * 1000);
        const Answer late = m_web->get(path, good);
        QCOMPARE(late.status, 401);
        QCOMPARE(late.error, QNetworkReply::AuthenticationRequiredError);
        QCOMPARE(late.code(), QStringLiteral("TOKEN_EXPIRED"));
    }

    void hasADatabaseError()
    {
        m_network->account().setDatabaseError(true);
        const Answer answer = m_web->logIn();
        QCOMPARE(answer.status, 500);
        QCOMPARE(answer.code(), QStringLiteral("DATABASE_ERROR"));
        m_network->account().setDatabaseError(false);
        QCOMPARE(m_web->logIn().status, 200);
    }

    void answersWithABareStatus()
    {
        m_network->account().setBareStatus(503);
        const Answer answer = m_web->logIn();
        QCOMPARE(answer.status, 503);
        QVERIFY(answer.json.isEmpty());
    }

    void tellsHowToRegister()
    {
        const Answer answer = m_web->get(QStringLiteral("/register"));
        QCOMPARE(answer.status, 200);
        QVERIFY(QString::fromUtf8(answer.body).contains(u"练习网络"));
    }

    void knowsNoOtherPath()
    {
        QCOMPARE(m_web->get(QStringLiteral("/api/users")).status, 404);
        QCOMPARE(m_web->post(QStringLiteral("/api/server/rating"), "{}").status, 404);
    }

    void saysWhatItAnsweredAndNoSecret()
    {
        QSignalSpy answered(&m_network->account(), &AccountService::requestAnswered);
        m_web->logIn();
        QCOMPARE(answered.size(), 1);
        QCOMPARE(answered.at(0), (QVariantList{QStringLiteral("POST"), QStringLiteral("/api/users/sessions"), 200}));
    }

    void aRequestWithoutEndCostsItsConnection()
    {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, m_network->account().port());
        TRY_COMPARE(socket.state(), QAbstractSocket::ConnectedState);
        socket.write("POST /api/users/sessions HTTP/1.1\r\nContent-Length: 900000000000\r\n\r\n");
        socket.write(QByteArray(300'000, 'x'));
        TRY_COMPARE(socket.state(), QAbstractSocket::UnconnectedState);
        QCOMPARE(m_web->logIn().status, 200);
    }

    void garbageCostsItsConnection_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("zeros") << QByteArray(4096, '\0') + "\r\n\r\n";
        QTest::newRow("no HTTP") << QByteArray("#APX:SERVER\r\n\r\n");
        QTest::newRow("wrong length") << QByteArray("GET /register HTTP/1.1\r\nContent-Length: -5\r\n\r\n");
        QTest::newRow("length in words") << QByteArray("GET /register HTTP/1.1\r\nContent-Length: many\r\n\r\n");
        QTest::newRow("bad chunks") << QByteArray("POST /api/users/sessions HTTP/1.1\r\n"
                                                  "Transfer-Encoding: chunked\r\n\r\nZZ\r\n");
        QTest::newRow("header without end") << "GET / HTTP/1.1\r\nA: " + QByteArray(200'000, 'a');
        QTest::newRow("bad address") << QByteArray("GET http://[::::/ HTTP/1.1\r\n\r\n");
    }

    void garbageCostsItsConnection()
    {
        QFETCH(QByteArray, bytes);
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, m_network->account().port());
        TRY_COMPARE(socket.state(), QAbstractSocket::ConnectedState);
        socket.write(bytes);
        TRY_VERIFY(socket.bytesToWrite() == 0 || socket.state() == QAbstractSocket::UnconnectedState);
        QCOMPARE(m_web->logIn().status, 200); // whatever became of that connection, the service goes on
    }

    void connectionsAreLimited()
    {
        std::vector<std::unique_ptr<QTcpSocket>> sockets;
        for (int i = 0; i < 80; ++i) {
            sockets.push_back(std::make_unique<QTcpSocket>());
            sockets.back()->connectToHost(QHostAddress::LocalHost, m_network->account().port());
            QCoreApplication::processEvents(); // or too many wait for the service, and try again a second later
        }
        const auto open = [&] {
            return std::count_if(sockets.begin(), sockets.end(), [](const auto &socket) {
                return socket->state() != QAbstractSocket::UnconnectedState;
            });
        };
        TRY_COMPARE(open(), 64);
        sockets.clear();
        TRY_COMPARE(m_web->logIn().status, 200);
    }
};

TARVO_TEST(AccountServiceTest)
#include "AccountServiceTest.moc"
