#include "ComposingInput.h"
#include "MessagesPageFixture.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QSignalSpy>
#include <QTest>

using tarvo::test::ComposingInput;
using tarvo::test::fillMessages;
using tarvo::test::stationCalled;
using tarvo::ui::MessagesPageViewModel;

/// The messages page under real keys, clicks and an input method.
class MessagesPageTest : public QObject, protected tarvo::test::MessagesPageFixture
{
    Q_OBJECT

private slots:
    void init() { open(); }

    void cleanup()
    {
        QCOMPARE(m_harness->complaints().join(u'\n'), QString());
        m_harness.reset();
    }

    void everySizeKeepsItsTextsInside_data()
    {
        QTest::addColumn<QString>("channel");
        QTest::addColumn<QSize>("size");
        for (const char *channel : {"RADIO", "CSN3388", "PRIVATE", "SERVER", "SELCAL", "BROADCAST"})
            for (const QSize &size : {QSize(1000, 700), QSize(1280, 800), QSize(1920, 1080)})
                QTest::addRow("%s %d", channel, size.width()) << QString::fromLatin1(channel) << size;
    }

    void everySizeKeepsItsTextsInside()
    {
        QFETCH(QString, channel);
        QFETCH(QSize, size);
        open(size);
        fillMessages(model());
        model().setActiveChannel(channel);
        m_harness->settle();
        QCOMPARE(m_harness->textsOutOfBounds(), QStringList());
        m_harness->grab(QStringLiteral("messages-%1-%2").arg(channel.toLower()).arg(size.width()));
    }

    void theSidebarsBadge_data()
    {
        QTest::addColumn<int>("unread");
        QTest::addColumn<QString>("text"); // empty: hidden
        QTest::newRow("none") << 0 << QString();
        QTest::newRow("one") << 1 << QStringLiteral("1");
        QTest::newRow("99") << 99 << QStringLiteral("99");
        QTest::newRow("100") << 100 << QStringLiteral("99+");
        QTest::newRow("all that the list can hold") << 300 << QStringLiteral("99+");
        QTest::newRow("more") << 320 << QStringLiteral("99+");
    }

    void theSidebarsBadge()
    {
        QFETCH(int, unread);
        QFETCH(QString, text);
        for (int i = 0; i < unread; ++i)
            model().addServerMessage(QStringLiteral("text"));
        const QQuickItem *badge = field("sidebarBadge");
        QCOMPARE(badge != nullptr, !text.isEmpty());
        if (badge)
            QCOMPARE(badge->childItems().value(0)->property("text").toString(), text);
        model().setActiveChannel(QStringLiteral("SERVER"));
        QVERIFY(!field("sidebarBadge"));
    }

    void aChannelIsChosenByAClick()
    {
        fillMessages(model());
        m_harness->click(field("channel-SERVER"));
        QCOMPARE(model().activeChannel(), QStringLiteral("SERVER"));
        TRY_VERIFY(m_harness->itemWithText(QStringLiteral("欢迎来到网络。")));
        QVERIFY(!field("sendButton")->isEnabled());
        m_harness->click(field("channel-WALLOP"));
        QVERIFY(field("sendButton")->isEnabled());
    }

    void aSenderIsAnsweredByAClick()
    {
        fillMessages(model());
        m_harness->settle();
        m_harness->click(senderOf(QStringLiteral("CCA1831")));
        QCOMPARE(model().draftTarget(), QStringLiteral("CCA1831"));
        QCOMPARE(model().activeChannel(), QStringLiteral("CCA1831"));
        TRY_VERIFY(field("session-CCA1831"));
    }

    void nobodyAnswersTheServerOrOneself()
    {
        fillMessages(model());
        m_harness->settle();
        QVERIFY(!senderOf(QStringLiteral("CES2352"))->isEnabled());
        model().setActiveChannel(QStringLiteral("SERVER"));
        m_harness->settle();
        QVERIFY(!senderOf(QStringLiteral("服务器"))->isEnabled());
        QVERIFY(!senderOf(QStringLiteral("系统"))->isEnabled());
    }

    void aStationIsCalledByAClick()
    {
        fillMessages(model());
        TRY_VERIFY(field("station-ZSPD_GND"));
        m_harness->click(field("station-ZSPD_GND"));
        QCOMPARE(model().activeChannel(), QStringLiteral("ZSPD_GND"));
        m_harness->type(QStringLiteral("hello"));
        QCOMPARE(model().draftMessage(), QStringLiteral("hello"));
    }

    void theColumnIsTitled() { QCOMPARE(field("columnTitle")->property("title").toString(), QStringLiteral("消息")); }

    void aStationShowsItsWholeName()
    {
        open({1000, 700});
        model().setNearbyController(stationCalled(QStringLiteral("ZSPD_TWR"), 118800, QStringLiteral("Liu Fangyuan")));
        TRY_VERIFY(m_harness->itemWithText(QStringLiteral("Liu Fangyuan")));
        m_harness->settle();
        QVERIFY(!m_harness->itemWithText(QStringLiteral("Liu Fangyuan"))->property("truncated").toBool());
        QVERIFY(!m_harness->itemWithText(QStringLiteral("118.800"))->property("truncated").toBool());
        QVERIFY(!m_harness->itemWithText(QStringLiteral("ZSPD_TWR"))->property("truncated").toBool());
    }

    void aSessionIsClosedByAKey_data()
    {
        QTest::addColumn<bool>("onTheCross");
        QTest::addColumn<int>("key");
        QTest::newRow("Delete on the row") << false << int(Qt::Key_Delete);
        QTest::newRow("Delete on the cross") << true << int(Qt::Key_Delete);
        QTest::newRow("Enter on the cross") << true << int(Qt::Key_Return);
        QTest::newRow("space on the cross") << true << int(Qt::Key_Space);
    }

    void aSessionIsClosedByAKey()
    {
        QFETCH(bool, onTheCross);
        QFETCH(int, key);
        fillMessages(model());
        TRY_VERIFY(field("session-CSN3388"));
        QVERIFY(m_harness->tabTo(QStringLiteral("session-CSN3388")));
        if (onTheCross)
            QTest::keyClick(&m_harness->view, Qt::Key_Tab);
        QTest::keyClick(&m_harness->view, Qt::Key(key));
        TRY_VERIFY(!field("session-CSN3388"));
        QVERIFY(field("session-ZSHA_CTR"));
        // The keyboard goes on from there.
        QVERIFY(m_harness->view.activeFocusItem()->property("visualFocus").toBool());
    }

    void aChannelIsNotClosedByAKey()
    {
        fillMessages(model());
        QVERIFY(m_harness->tabTo(QStringLiteral("channel-WALLOP")));
        const qsizetype channels = model().channels().size();
        QTest::keyClick(&m_harness->view, Qt::Key_Delete);
        QCOMPARE(model().channels().size(), channels);
        QTest::keyClick(&m_harness->view, Qt::Key_Return);
        QCOMPARE(model().activeChannel(), QStringLiteral("WALLOP"));
    }

    void aSessionOutOfSightIsScrolledTo()
    {
        fillMessages(model());
        for (int i = 0; i < 12; ++i)
            model().addPrivateReceived(QStringLiteral("P%1").arg(i), QStringLiteral("text"));
        m_harness->settle();
        QQuickItem *sessions = field("sessionList");
        const QString last = model().privateSessions().constLast().toMap().value(QStringLiteral("callsign")).toString();
        QVERIFY(m_harness->tabTo(QStringLiteral("session-") + last));
        const QQuickItem *focused = m_harness->view.activeFocusItem();
        const QRectF box = focused->mapRectToItem(sessions, QRectF(0, 0, focused->width(), focused->height()));
        QVERIFY(QRectF(-1, -1, sessions->width() + 2, sessions->height() + 2).contains(box));
        QVERIFY(sessions->property("contentY").toReal() > 100);
    }

    void aSessionIsClosedByItsCross()
    {
        fillMessages(model());
        TRY_VERIFY(field("session-CSN3388"));
        QQuickItem *row = field("session-CSN3388");
        m_harness->click(row);
        QCOMPARE(model().activeChannel(), QStringLiteral("CSN3388"));
        m_harness->click(row->findChild<QQuickItem *>(QStringLiteral("closeControl")));
        QCOMPARE(model().activeChannel(), QStringLiteral("RADIO"));
        TRY_VERIFY(!field("session-CSN3388"));
        QCOMPARE(model().privateSessions().size(), 1);
    }

    void theListIsCleared()
    {
        fillMessages(model());
        m_harness->settle();
        QVERIFY(!m_harness->itemWithText(QStringLiteral("当前频道暂无消息")));
        m_harness->click(field("clearMessagesButton"));
        QCOMPARE(model().messages(), QVariantList());
        TRY_VERIFY(m_harness->itemWithText(QStringLiteral("当前频道暂无消息")));
    }

    void sendingGoesToTheActiveChannel_data()
    {
        QTest::addColumn<QString>("channel");
        QTest::addColumn<QList<QVariantList>>("privates");
        QTest::addColumn<QList<QVariantList>>("radios");
        QTest::addColumn<QList<QVariantList>>("wallops");
        const QString text = QStringLiteral("hello there");
        const QList<QVariantList> none;
        QTest::newRow("radio") << QStringLiteral("RADIO") << none << QList<QVariantList>{{text}} << none;
        QTest::newRow("wallop") << QStringLiteral("WALLOP") << none << none << QList<QVariantList>{{text}};
        QTest::newRow("private") << QStringLiteral("CSN3388") << QList<QVariantList>{{QStringLiteral("CSN3388"), text}}
                                 << none << none;
    }

    void sendingGoesToTheActiveChannel()
    {
        QFETCH(QString, channel);
        fillMessages(model());
        model().setActiveChannel(channel);
        QSignalSpy privates(&model(), &MessagesPageViewModel::privateMessageRequested);
        QSignalSpy radios(&model(), &MessagesPageViewModel::radioMessageRequested);
        QSignalSpy wallops(&model(), &MessagesPageViewModel::wallopRequested);
        m_harness->type(QStringLiteral("hello there"));
        m_harness->click(field("sendButton"));
        QTEST(QList<QVariantList>(privates), "privates");
        QTEST(QList<QVariantList>(radios), "radios");
        QTEST(QList<QVariantList>(wallops), "wallops");
        QCOMPARE(composed(), QString());
        QVERIFY(field("composeField")->hasActiveFocus());
    }

    void enterSends()
    {
        fillMessages(model());
        QSignalSpy radios(&model(), &MessagesPageViewModel::radioMessageRequested);
        m_harness->type(QStringLiteral("one"));
        QTest::keyClick(&m_harness->view, Qt::Key_Return);
        m_harness->type(QStringLiteral("two"));
        QTest::keyClick(&m_harness->view, Qt::Key_Enter);
        m_harness->type(QStringLiteral("  "));
        QTest::keyClick(&m_harness->view, Qt::Key_Return);
        QCOMPARE(radios, (QList<QVariantList>{{QStringLiteral("one")}, {QStringLiteral("two")}}));
    }

    void sendingCommitsWhatIsBeingComposed_data()
    {
        QTest::addColumn<bool>("click");
        QTest::newRow("Enter") << false;
        QTest::newRow("button") << true;
    }

    void sendingCommitsWhatIsBeingComposed()
    {
        QFETCH(bool, click);
        fillMessages(model());
        QSignalSpy radios(&model(), &MessagesPageViewModel::radioMessageRequested);
        m_harness->type(QStringLiteral("a"));
        ComposingInput input;
        input.compose(QStringLiteral("你好"));
        QCOMPARE(field("composeField")->property("preeditText").toString(), QStringLiteral("你好"));
        QCOMPARE(composed(), QStringLiteral("a"));
        if (click)
            m_harness->click(field("sendButton"));
        else
            QTest::keyClick(&m_harness->view, Qt::Key_Return);
        QCOMPARE(radios, (QList<QVariantList>{{QStringLiteral("a你好")}}));
        QCOMPARE(composed(), QString());
    }

    void offlineNothingCanBeWritten()
    {
        fillMessages(model());
        model().setNetworkConnected(false);
        QVERIFY(!field("sendButton")->isEnabled());
        QVERIFY(!field("composeField")->isEnabled());
        QCOMPARE(field("composeHint")->property("text").toString(), QStringLiteral("网络未连接"));
    }

    void aDraftOutlivesThePage()
    {
        fillMessages(model());
        m_harness->type(QStringLiteral("half a"));
        m_harness->openSection(QStringLiteral("总览"));
        m_harness->openSection(QStringLiteral("消息"));
        QCOMPARE(composed(), QStringLiteral("half a"));
        m_harness->type(QStringLiteral(" word"));
        QCOMPARE(model().draftMessage(), QStringLiteral("half a word"));
    }

    void theEmptyPageTellsWhatIsMissing()
    {
        QVERIFY(m_harness->itemWithText(QStringLiteral("当前频道暂无消息")));
        QVERIFY(m_harness->itemWithText(QStringLiteral("附近暂无管制席位")));
        QVERIFY(m_harness->itemWithText(QStringLiteral("暂无消息")));
        QCOMPARE(m_harness->textsOutOfBounds(), QStringList());
        m_harness->grab(QStringLiteral("messages-empty"));
    }

    void aFloodOfSendersKeepsThePageUsable()
    {
        fillMessages(model());
        for (int i = 0; i < 2000; ++i)
            model().addPrivateReceived(QStringLiteral("P%1").arg(i), QStringLiteral("buy now"));
        m_harness->settle();
        QCOMPARE(field("sessionList")->property("count").toInt(), 200);
        QVERIFY(field("channel-RADIO"));
        m_harness->grab(QStringLiteral("messages-flood"));
    }
};

TARVO_TEST(MessagesPageTest)
#include "MessagesPageTest.moc"
