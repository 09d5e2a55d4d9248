#include "PageHarness.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QObject>
#include <QSignalSpy>
#include <QStyleHints>
#include <QTest>

#include <memory>

using tarvo::test::PageHarness;
using tarvo::ui::DashboardViewModel;
using tarvo::ui::LinkState;
using tarvo::ui::ServerPageViewModel;
using tarvo::ui::StatusViewModel;

/// The connections' states and the banner, on every page; and the reason under the button.
class StatusInSightTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_harness = std::make_unique<PageHarness>(u"XPLANE"_qs, QSize(1000, 700)); }

    void cleanup()
    {
        QCOMPARE(m_harness->complaints(), QStringList());
        m_harness.reset();
    }

    void everyPageHasTheLines_data()
    {
        QTest::addColumn<QString>("section");
        for (const char16_t *title : {u"总览", u"模拟器", u"服务器", u"语音服务", u"消息", u"设置"})
            QTest::newRow(qPrintable(QString::fromUtf16(title))) << QString::fromUtf16(title);
    }
    void everyPageHasTheLines()
    {
        QFETCH(QString, section);
        m_harness->openSection(section);
        loseBoth();
        m_harness->settle();
        for (const char16_t *name : {u"status-server", u"status-simulator", u"status-voice"})
            QVERIFY(m_harness->item(QString::fromUtf16(name)));
        const QQuickItem *page = m_harness->item(u"sectionLoader"_qs);
        const QQuickItem *banner = m_harness->item(u"noticeBanner"_qs);
        QVERIFY(banner);
        QVERIFY(page->y() >= banner->y() + banner->height());
        QCOMPARE(page->y() + page->height(), m_harness->view.height() - 16.0);
        QCOMPARE(m_harness->textsOutOfBounds(), QStringList());
    }

    void theAccountStaysInTheWindow()
    {
        m_harness->fillAccount();
        loseBoth();
        m_harness->settle();
        const QQuickItem *cid = m_harness->itemWithText(u"CID：1001"_qs);
        QVERIFY(cid);
        QVERIFY(cid->mapToScene(QPointF(0, cid->height())).y() <= m_harness->view.height() - 8);
    }

    void aLineOpensItsPage()
    {
        m_harness->click(m_harness->item(u"status-server"_qs));
        QVERIFY(m_harness->item(u"connectButton"_qs));
    }

    void theBannersButtonConnectsAgain()
    {
        loseNetwork();
        m_harness->settle();
        const QSignalSpy again(&m_harness->status(), &StatusViewModel::networkReconnectRequested);
        m_harness->click(m_harness->item(u"bannerAction"_qs));
        QCOMPARE(again.size(), 1);
        QVERIFY(!m_harness->item(u"noticeBanner"_qs));
    }

    void theBannersButtonShowsThePageThatTells()
    {
        m_harness->status().networkFailed(u"Callsign in use"_qs);
        m_harness->settle();
        QCOMPARE(m_harness->item(u"bannerAction"_qs)->property("text").toString(), u"查看"_qs);
        m_harness->click(m_harness->item(u"bannerAction"_qs));
        QVERIFY(m_harness->item(u"connectButton"_qs));
        QVERIFY(!m_harness->item(u"noticeBanner"_qs));
    }

    void theCrossEndsTheBanner()
    {
        loseNetwork();
        m_harness->settle();
        m_harness->click(m_harness->item(u"bannerClose"_qs));
        QVERIFY(!m_harness->item(u"noticeBanner"_qs));
    }

    void theReasonIsAtTheButtonAndCanBeCopied()
    {
        m_harness->openSection(u"服务器"_qs);
        QVERIFY(!m_harness->item(u"connectFailure"_qs));
        m_harness->server().setFailure(u"服务器报告：Callsign in use"_qs);
        m_harness->settle();
        QQuickItem *reason = m_harness->item(u"connectFailure"_qs);
        QVERIFY(reason);
        const QQuickItem *button = m_harness->item(u"connectButton"_qs);
        QVERIFY(reason->mapToScene({}).y() > button->mapToScene({}).y());
        QTest::mouseDClick(&m_harness->view, Qt::LeftButton, {}, reason->mapToScene({20, 8}).toPoint());
        reason->forceActiveFocus();
        QTest::keyClick(&m_harness->view, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(&m_harness->view, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"服务器报告：Callsign in use"_qs);
    }

    void aRightClickCopiesAnEvent()
    {
        m_harness->openSection(u"服务器"_qs);
        m_harness->server().addRecentEvent(u"网络已断开"_qs, u"服务器关闭"_qs, u"网络"_qs);
        m_harness->settle();
        const QString time = m_harness->server().recentEvents().first().toMap().value(u"time"_qs).toString();
        const QQuickItem *title = m_harness->itemWithText(u"网络已断开"_qs);
        QTest::mouseClick(&m_harness->view, Qt::RightButton, {}, title->mapToScene({10, 5}).toPoint());
        TRY_VERIFY(m_harness->item(u"copyAction"_qs));
        m_harness->click(m_harness->item(u"copyAction"_qs));
        QCOMPARE(QGuiApplication::clipboard()->text(), time + u" 网络已断开 服务器关闭 网络"_qs);
        TRY_VERIFY(!m_harness->item(u"copyAction"_qs));
    }

    void anEventIsCopiedByKeysAndInPart()
    {
        m_harness->openSection(u"服务器"_qs);
        for (int i = 0; i < 30; ++i)
            m_harness->server().addRecentEvent(u"第 %1 件"_qs.arg(i), u"服务器关闭"_qs, u"网络"_qs);
        m_harness->settle();
        QVERIFY(m_harness->tabTo(u"eventList"_qs));
        const auto copied = [this] {
            QTest::keySequence(&m_harness->view, QKeySequence::Copy);
            return QGuiApplication::clipboard()->text();
        };
        for (int i = 0; i < 20; ++i)
            QTest::keyClick(&m_harness->view, Qt::Key_Down);
        QVERIFY2(copied().endsWith(u" 第 10 件 服务器关闭 网络"_qs), qPrintable(copied())); // newest first
        QVERIFY(m_harness->item(u"eventList"_qs)->property("contentY").toReal() > 0);
        m_harness->grab(u"server-event-row"_qs);
        QQuickItem *title = m_harness->itemWithText(u"第 10 件"_qs);
        QVERIFY(title);
        const QPoint start = title->mapToScene({0, title->height() / 2}).toPoint();
        QTest::mouseMove(&m_harness->view, start);
        QTest::mousePress(&m_harness->view, Qt::LeftButton, {}, start);
        QTest::mouseMove(&m_harness->view, start + QPoint(20, 0));
        QTest::mouseMove(&m_harness->view, start + QPoint(150, 0));
        QTest::mouseRelease(&m_harness->view, Qt::LeftButton, {}, start + QPoint(150, 0));
        QCOMPARE(copied(), u"第 10 件"_qs);
    }

    void theButtonCallsAnAttemptOff()
    {
        m_harness->openSection(u"服务器"_qs);
        m_harness->server().setServerState(false, LinkState::Connecting);
        QQuickItem *button = m_harness->item(u"connectButton"_qs);
        QCOMPARE(button->property("text").toString(), u"取消连接"_qs);
        QSignalSpy ends(&m_harness->server(), &ServerPageViewModel::disconnectRequested);
        m_harness->click(button);
        QCOMPARE(ends.size(), 1);
    }

    void aDoubleClickOnTheButtonIsOne_data()
    {
        QTest::addColumn<bool>("online");
        QTest::newRow("connect") << false;
        QTest::newRow("disconnect, without a question") << true;
    }
    void aDoubleClickOnTheButtonIsOne()
    {
        QFETCH(const bool, online);
        using Server = ServerPageViewModel;
        Server &server = m_harness->server();
        m_harness->openSection(u"服务器"_qs);
        server.setCallsign(u"CES2352"_qs);
        server.setObserverMode(true);
        server.setServerState(online, online ? LinkState::Connected : LinkState::Absent);
        // As the window answers.
        const auto show = [&](bool isOnline) {
            server.setServerState(false, isOnline ? LinkState::Connecting : LinkState::Ended);
        };
        QObject::connect(&server, &Server::connectRequested, &server, [&] { show(true); });
        QObject::connect(&server, &Server::disconnectRequested, &server, [&] { show(false); });
        const QSignalSpy connects(&server, &Server::connectRequested);
        const QSignalSpy ends(&server, &Server::disconnectRequested);
        doubleClick(u"connectButton"_qs);
        QCOMPARE(connects.size(), online ? 0 : 1);
        QCOMPARE(ends.size(), online ? 1 : 0);
    }

    void aDoubleClickOnTheBannerIsOne()
    {
        m_harness->status().setSimulator(true, LinkState::Connected);
        m_harness->status().setSimulator(false, LinkState::Absent);
        m_harness->status().simulatorFailed(u"模拟器不再发送数据。"_qs);
        loseNetwork();
        m_harness->settle();
        const QSignalSpy network(&m_harness->status(), &StatusViewModel::networkReconnectRequested);
        const QSignalSpy simulator(&m_harness->status(), &StatusViewModel::simulatorReconnectRequested);
        doubleClick(u"bannerAction"_qs);
        QCOMPARE(network.size(), 1);
        QCOMPARE(simulator.size(), 0); // whose banner has come up beneath
        QCOMPARE(m_harness->status().bannerText(), u"模拟器已断开：模拟器不再发送数据。"_qs);
    }

    void aLongReasonLeavesTheBannersButtonsInTheWindow_data()
    {
        QTest::addColumn<QString>("reason");
        QTest::newRow("Chinese") << QString(9000, u'长');
        QTest::newRow("wide") << QString(9000, u'W');
        QTest::newRow("line breaks") << u"x\n"_qs.repeated(900);
    }
    void aLongReasonLeavesTheBannersButtonsInTheWindow()
    {
        QFETCH(const QString, reason);
        m_harness->status().networkFailed(reason);
        m_harness->settle();
        QVERIFY(m_harness->item(u"noticeBanner"_qs)->height() < 150);
        for (const QString &name : {u"bannerAction"_qs, u"bannerClose"_qs}) {
            const QQuickItem *item = m_harness->item(name);
            QVERIFY(QRectF(m_harness->view.geometry().translated(-m_harness->view.position()))
                        .contains(item->mapRectToScene(item->boundingRect())));
        }
    }

    void whyVoiceFailedIsUnderItsButton()
    {
        m_harness->openSection(u"语音服务"_qs);
        QVERIFY(!m_harness->item(u"voiceFailure"_qs));
        m_harness->voice().setFailure(u"bad token"_qs);
        m_harness->settle();
        const QQuickItem *reason = m_harness->item(u"voiceFailure"_qs);
        const QQuickItem *button = m_harness->item(u"voiceConnectButton"_qs);
        QVERIFY(reason && button);
        QCOMPARE(reason->property("text").toString(), u"bad token"_qs);
        QVERIFY(reason->mapToScene({}).y() >= button->mapToScene(QPointF(0, button->height())).y());
        QCOMPARE(m_harness->textsOutOfBounds(), QStringList());
    }

    void onlyWhatIsWrongIsRed()
    {
        m_harness->openSection(u"服务器"_qs);
        const auto colour = [this] { return m_harness->item(u"formError"_qs)->property("color").value<QColor>(); };
        m_harness->server().setTypeCode(u"B738"_qs); // the callsign is still to come
        const QColor hint = colour();
        m_harness->server().setCallsign(u"a b"_qs);
        QVERIFY(colour().red() > 150 && hint.red() < 120);
    }

    void theOverviewTellsWhyThereIsNoSimulator()
    {
        m_harness->dashboard().setSimulatorState(false, LinkState::Failed);
        m_harness->dashboard().setSimulatorFailure(u"插件没有应答"_qs);
        m_harness->settle();
        QCOMPARE(m_harness->item(u"simulatorHint"_qs)->property("text").toString(), u"插件没有应答"_qs);
        const QSignalSpy again(&m_harness->dashboard(), &DashboardViewModel::simulatorReconnectRequest);
        m_harness->click(m_harness->item(u"overviewReconnect"_qs));
        QCOMPARE(again.size(), 1);
        m_harness->fillFlight();
        m_harness->settle();
        QVERIFY(!m_harness->item(u"simulatorHint"_qs));
    }

private:
    void doubleClick(const QString &name)
    {
        const QQuickItem *item = m_harness->item(name);
        TRY_VERIFY(item->property("settled").toBool());
        QStyleHints *hints = QGuiApplication::styleHints();
        const int interval = hints->mouseDoubleClickInterval();
        hints->setMouseDoubleClickInterval(60'000); // however slow the machine is
        QTest::mouseDClick(&m_harness->view, Qt::LeftButton, {},
                           item->mapToScene({item->width() / 2, item->height() / 2}).toPoint());
        hints->setMouseDoubleClickInterval(interval);
    }

    void loseNetwork()
    {
        m_harness->status().setNetwork(true, LinkState::Connected);
        m_harness->status().setNetwork(false, LinkState::ForcedOut);
        m_harness->status().networkFailed(
            u"被强制断开：You have been removed from the network by a supervisor: unattended connection"_qs);
    }

    void loseBoth()
    {
        m_harness->status().setSimulator(false, LinkState::Failed);
        m_harness->status().simulatorFailed(u"模拟器未启动或连接服务异常，请联系TARVO技术部"_qs);
        loseNetwork();
    }

    std::unique_ptr<PageHarness> m_harness;
};

TARVO_TEST(StatusInSightTest)
#include "StatusInSightTest.moc"
