#include "ui/StatusFeed.h"
#include "common/MessageType.h"
#include "manager/NetworkManager.h"
#include "support/FakeSimulator.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"
#include "ui/MainStage.h"
#include "voice/client/VoiceClient.h"

#include <QObject>
#include <QSignalSpy>
#include <QTcpSocket>

#include <memory>

using namespace tarvo;
using test::MainStage;
using ui::LinkState;
using voice::ConnectionState;

/// How the main window comes to know why a connection ended, and whether the pilot wished it.
class StatusFeedTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_stage = std::make_unique<MainStage>(); }
    void cleanup() { m_stage.reset(); }

    void aWishedEndIsNoFailure()
    {
        connectAndAccept();
        emit m_stage->server().disconnectRequested();
        MainStage::answer();
        TRY_COMPARE(m_stage->server().serverStatusText(), u"已断开"_qs);
        QCOMPARE(banner(), QString());
        QCOMPARE(m_stage->server().failureText(), QString());
        QCOMPARE(m_attention, 0);
    }

    void aLogoutIsNoFailureAndMakesNoSound()
    {
        connectAndAccept();
        const QSignalSpy played(&m_stage->window.sounds(), &ui::SoundPlayer::played);
        m_stage->window.onLogoutClicked();
        m_stage->network->disconnectFromNetwork(); // as the program does then
        QCOMPARE(m_stage->server().serverStatusText(), u"已断开"_qs);
        QCOMPARE(m_stage->server().failureText(), QString());
        QCOMPARE(m_attention, 0);
        QCOMPARE(played.size(), 0);
    }

    void aWishToLeaveOutlivesALoginThatIsAcceptedMeanwhile()
    {
        startSession();
        watchAttention();
        m_stage->server().requestDisconnect();
        emit m_stage->network->networkConnected(u"CES2352"_qs); // before the wish is carried out
        MainStage::answer();
        TRY_COMPARE(m_stage->server().serverStatusText(), u"已断开"_qs);
        QCOMPARE(m_stage->server().failureText(), QString());
        QCOMPARE(m_attention, 0);
    }

    void aServersRefusalOutlivesItsClose_data()
    {
        QTest::addColumn<QByteArray>("says");
        QTest::addColumn<QString>("reason");
        QTest::newRow("wrong password") << QByteArray("$ERSERVER:CES2352:006::Invalid CID/password")
                                        << u"服务器报告：Invalid CID/password"_qs;
        QTest::newRow("callsign in use") << QByteArray("$ERSERVER:CES2352:001::Callsign in use")
                                         << u"服务器报告：Callsign in use"_qs;
    }
    void aServersRefusalOutlivesItsClose()
    {
        QFETCH(const QByteArray, says);
        QFETCH(const QString, reason);
        startSession();
        serverSays(says);
        m_peer->disconnectFromHost();
        TRY_COMPARE(m_stage->server().serverStatusText(), u"已断开"_qs);
        QCOMPARE(m_stage->server().failureText(), reason);
        QCOMPARE(banner(), u"网络连接失败："_qs + reason);
    }

    void aKillIsToldWithItsReason()
    {
        connectAndAccept();
        serverSays("$!!SERVER:CES2352:go away");
        m_peer->disconnectFromHost();
        TRY_COMPARE(banner(), u"网络已断开：被强制断开：go away"_qs);
        QCOMPARE(m_stage->server().failureText(), u"被强制断开：go away"_qs);
        QCOMPARE(m_attention, 1);
    }

    void aRefusedTokenIsNoKill()
    {
        m_stage->config.set(config::authVatsim, true);
        startSession();
        serverSays("$DISERVER:CLIENT:VATSIM FSD V3.53a:abcdef01"); // the account has no token to give
        const QString reason = u"网络认证失败：没有登录令牌，请退出后重新登录。"_qs;
        TRY_COMPARE(m_stage->server().serverStatusText(), u"已断开（强制）"_qs);
        QCOMPARE(m_stage->server().failureText(), reason);
        QCOMPARE(banner(), u"网络连接失败："_qs + reason);
    }

    void aRefusalBeforeTheSessionIsNotWhyItEnds()
    {
        emit m_stage->network->notificationPosted(u"refused before"_qs, tarvo::common::MessageType::Error);
        startSession();
        m_peer->disconnectFromHost();
        TRY_COMPARE(banner(), u"网络连接失败：服务器关闭了连接。"_qs);
    }

    void aBrokenLineIsTold()
    {
        connectAndAccept();
        m_peer->disconnectFromHost();
        TRY_COMPARE(banner(), u"网络已断开：服务器关闭了连接。"_qs);
        QCOMPARE(m_attention, 1);
    }

    void theBannerConnectsAgainAsBefore()
    {
        connectAndAccept();
        m_peer->disconnectFromHost();
        TRY_VERIFY(!banner().isEmpty());
        m_stage->window.status().act();
        MainStage::answer();
        MainStage::answer();
        QCOMPARE(m_stage->server().serverStatusText(), u"连接中..."_qs);
        QCOMPARE(banner(), QString());
        QCOMPARE(m_stage->network->connectInfo(), (model::ConnectInfo{u"CES2352"_qs, u"B738"_qs, u"AB-CD"_qs, true}));
    }

    void aRefusalStandsAtTheButton()
    {
        emit m_stage->server().connectRequested(u"CES2352"_qs, u"B738"_qs, QString(), false); // no simulator
        MainStage::answer();
        QCOMPARE(m_stage->server().failureText(), u"飞行员模式连接 FSD 前，请先连接模拟器并等待有效的飞机数据。"_qs);
        m_stage->observe(u"CES2352"_qs);
        QCOMPARE(m_stage->server().failureText(), QString());
    }

    void anAttemptThatFailsIsTold()
    {
        m_stage->fsd.close();
        m_stage->observe(u"CES2352"_qs);
        TRY_COMPARE(m_stage->server().failureText(), u"服务器拒绝了连接。"_qs);
        QCOMPARE(banner(), u"网络连接失败：服务器拒绝了连接。"_qs);
    }

    void anAttemptCanBeCalledOff()
    {
        m_stage->observe(u"CES2352"_qs);
        QVERIFY(m_stage->server().buttonEnds());
        m_stage->server().requestDisconnect();
        MainStage::answer();
        TRY_COMPARE(m_stage->server().serverStatusText(), u"已断开"_qs);
        QVERIFY(!m_stage->server().buttonEnds());
        QCOMPARE(m_stage->server().failureText(), QString());
    }

    void aLostSimulatorIsToldWhileOnTheNetwork_data()
    {
        QTest::addColumn<bool>("online");
        QTest::addColumn<bool>("wished");
        QTest::addColumn<QString>("banner");
        QTest::addColumn<QString>("line");
        const QString reason = u"模拟器不再发送数据。"_qs;
        QTest::newRow("on the network") << true << false << u"模拟器已断开："_qs + reason
                                        << u"failed 未连接 "_qs + reason;
        QTest::newRow("after the flight") << false << false << QString() << u"failed 未连接 "_qs + reason;
        QTest::newRow("asked for anew") << true << true << QString() << u"quiet 未连接"_qs;
    }
    void aLostSimulatorIsToldWhileOnTheNetwork()
    {
        QFETCH(bool, online);
        QFETCH(bool, wished);
        m_stage->dashboard().setServerState(online, LinkState::Connected);
        emit m_stage->network->simulatorConnectionStateChanged(true);
        if (wished)
            m_stage->dashboard().requestSimulatorReconnect();
        watchAttention();
        emit m_stage->network->simulatorConnectionStateChanged(false);
        QTEST(banner(), "banner");
        QTEST(simulatorLine(), "line");
        QCOMPARE(m_attention, online && !wished ? 1 : 0);
    }

    void aWishEndsWithItsAttempt_data()
    {
        QTest::addColumn<bool>("failed");
        QTest::newRow("that fails") << true;
        QTest::newRow("that succeeds") << false;
    }
    void aWishEndsWithItsAttempt()
    {
        QFETCH(const bool, failed);
        m_stage->dashboard().setServerState(true, LinkState::Connected);
        emit m_stage->network->simulatorConnectionStateChanged(true);
        m_stage->dashboard().requestSimulatorReconnect(); // which ends nothing: the data flow all along
        if (failed)
            emit m_stage->network->simulatorConnectionFailed(u"插件没有应答"_qs);
        else
            emit m_stage->network->simulatorConnectionStateChanged(true);
        emit m_stage->network->simulatorConnectionStateChanged(false); // an hour later
        QCOMPARE(banner(), u"模拟器已断开：模拟器不再发送数据。"_qs);
    }

    void thePagesButtonForAnotherAttemptIsAWish()
    {
        m_stage->window.show();
        const auto simulator = std::make_shared<test::FakeSimulator>();
        m_stage->network->setSimulator(simulator);
        emit simulator->simConnectionStateChanged(true);
        emit simulator->userAircraftDataChanged({.latitude = 40, .longitude = 116.5});
        TRY_VERIFY(m_stage->dashboard().simulatorConnected());
        TRY_COMPARE(simulator->calls, QStringList{u"reconnectSimulator"_qs}); // by itself, the first time
        simulator->onCall = [&](const QString &) { emit simulator->simConnectionStateChanged(false); };
        m_stage->dashboard().setServerState(true, LinkState::Connected);
        m_stage->dashboard().setCurrentMode(u"XPLANE"_qs);
        test::click(m_stage->window, u"section-simulator"_qs);
        const QSignalSpy told(&m_stage->window.status(), &ui::StatusViewModel::bannerChanged);
        test::click(m_stage->window, u"reconnectButton"_qs);
        TRY_VERIFY(!m_stage->dashboard().simulatorConnected());
        QCOMPARE(told.size(), 0); // a loss, which a wish makes forgotten, would have been told first
    }

    void anotherAttemptIsShown()
    {
        emit m_stage->network->simulatorConnectionFailed(u"插件没有应答"_qs);
        QCOMPARE(m_stage->dashboard().simulatorHintText(), u"插件没有应答"_qs);
        QCOMPARE(m_stage->dashboard().simulatorTone(), u"failed"_qs);
        m_stage->dashboard().requestSimulatorReconnect();
        QCOMPARE(m_stage->dashboard().simulatorStatusText(), u"连接中..."_qs);
        QCOMPARE(m_stage->dashboard().simulatorTone(), u"pending"_qs);
        QCOMPARE(m_stage->window.simulator().simulatorFailureText(), QString());
        QVERIFY(m_stage->dashboard().simulatorHintText() != u"插件没有应答"_qs);
    }

    void anAttemptAtVoiceThatFailsIsTold()
    {
        voiceIs(ConnectionState::Connecting);
        QCOMPARE(voiceLine(), u"pending 连接中..."_qs);
        emit voice().errorOccurred(u"Failed to connect to server at v.test (ip=127.0.0.1): refused (errno=1)"_qs);
        const QString reason = u"无法连接语音服务器 v.test：错误 1。"_qs;
        QCOMPARE(voiceLine(), u"failed 连接失败 "_qs + reason);
        QCOMPARE(m_stage->window.voice().failureText(), reason);
        m_stage->window.voice().connectToVoiceServer(); // the next one
        QCOMPARE(voiceLine(), u"pending 连接中..."_qs);
        QCOMPARE(m_stage->window.voice().failureText(), QString());
        voiceIs(ConnectionState::Connected);
        QCOMPARE(voiceLine(), u"good 已连接"_qs);
    }

    void aLostVoiceIsTold_data()
    {
        QTest::addColumn<QString>("said");
        QTest::addColumn<ConnectionState>("from");
        QTest::addColumn<QString>("reason");
        QTest::newRow("without a word") << QString() << ConnectionState::Ready << u"与服务器的连接中断。"_qs;
        QTest::newRow("with a reason") << u"bye"_qs << ConnectionState::Ready << u"bye"_qs;
        QTest::newRow("refused") << u"bad token"_qs << ConnectionState::Connected << u"bad token"_qs;
    }
    void aLostVoiceIsTold()
    {
        QFETCH(QString, said);
        QFETCH(ConnectionState, from);
        QFETCH(QString, reason);
        watchAttention();
        voiceIs(from); // on the network or not
        if (!said.isEmpty())
            emit voice().errorOccurred(said);
        QVERIFY(voiceLine().startsWith(u"good "_qs));
        voiceIs(ConnectionState::Disconnected);
        QCOMPARE(voiceLine(), u"failed 未连接 "_qs + reason);
        QCOMPARE(m_stage->window.voice().failureText(), reason);
        QCOMPARE(m_attention, 1);
        m_stage->window.status().setCurrentSection(u"voice"_qs);
        QCOMPARE(voiceLine(), u"quiet 未连接"_qs);
    }

    void theNetworksEndTakesVoiceWithIt()
    {
        connectAndAccept();
        voiceIs(ConnectionState::Ready);
        emit m_stage->server().disconnectRequested();
        MainStage::answer();
        TRY_COMPARE(m_stage->server().serverStatusText(), u"已断开"_qs);
        voiceIs(ConnectionState::Disconnected);
        QCOMPARE(voiceLine(), u"quiet 未连接"_qs);
        QCOMPARE(m_stage->window.voice().failureText(), QString());
        voiceIs(ConnectionState::Connecting);
        voiceIs(ConnectionState::Ready);
        voiceIs(ConnectionState::Disconnected); // by itself
        QCOMPARE(voiceLine(), u"failed 未连接 与服务器的连接中断。"_qs);
    }

    void aPrivateTextAndSelcalAskForAttention()
    {
        const QSignalSpy asked(&m_stage->window, &ui::MainWindow::attentionAsked);
        emit m_stage->network->privateMessageReceived(u"CCA1"_qs, u"hello"_qs);
        QCOMPARE(asked.size(), 1);
        emit m_stage->network->selcalAlertReceived(u"ZBAA_CTR"_qs, {});
        QCOMPARE(asked.size(), 2);
        emit m_stage->network->serverMessageReceived(u"welcome"_qs);
        QCOMPARE(asked.size(), 2);
    }

    void aWindowInFrontAsksForNothing()
    {
        m_stage->window.show();
        m_stage->window.activateWindow();
        TRY_VERIFY(m_stage->window.isActiveWindow());
        const QSignalSpy asked(&m_stage->window, &ui::MainWindow::attentionAsked);
        emit m_stage->network->privateMessageReceived(u"CCA1"_qs, u"hello"_qs);
        QCOMPARE(asked.size(), 0);
    }

private:
    QString banner() const { return m_stage->window.status().bannerText(); }

    voice::VoiceClient &voice() const { return m_stage->network->voiceClient(); }
    void voiceIs(ConnectionState state) const { emit voice().connectionStateChanged(state); }
    QString simulatorLine() const { return lineText(1); }
    QString voiceLine() const { return lineText(2); }
    /// "tone word reason"
    QString lineText(int row) const
    {
        const ui::StatusLine &line = m_stage->window.status().lines().at(row);
        return QStringList{ui::toneText(line.tone), line.word, line.reason}.join(u' ').trimmed();
    }

    void watchAttention()
    {
        m_attention = 0;
        connect(&m_stage->window, &ui::MainWindow::attentionAsked, this, [this] { ++m_attention; });
    }

    /// An observer's session on whose login the server has not answered yet.
    void startSession()
    {
        m_stage->observe(u"CES2352"_qs);
        TRY_VERIFY(m_stage->fsd.hasPendingConnections());
        m_peer = m_stage->fsd.nextPendingConnection();
    }

    /// One whose login it has accepted.
    void connectAndAccept()
    {
        watchAttention();
        startSession();
        serverSays("#AACES2352:SERVER:A B:1001::1:9");
        TRY_COMPARE(m_stage->server().serverStatusText(), u"已连接"_qs);
    }

    void serverSays(const QByteArray &line)
    {
        m_peer->write(line + "\r\n");
        m_peer->flush();
    }

    std::unique_ptr<MainStage> m_stage;
    QTcpSocket *m_peer = nullptr;
    int m_attention = 0;
};

TARVO_TEST(StatusFeedTest)
#include "StatusFeedTest.moc"
