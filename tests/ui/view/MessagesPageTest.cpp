#include "PageHarness.h"
#include "support/TestRegistry.h"

#include <QInputMethodEvent>
#include <QObject>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>
#include <private/qinputmethod_p.h>
#include <qpa/qplatforminputcontext.h>

#include <memory>
#include <utility>

using tarvo::test::PageHarness;
using tarvo::ui::viewmodel::MessagesPageViewModel;

namespace {

tarvo::network::RadioMessageReceived radio(const QString &from, const QString &message, bool direct = false)
{
    return {.from = from,
            .message = message,
            .frequencies = QVariant::fromValue(QList<uint>{118025}),
            .direct = direct,
            .dualReceive = false};
}

tarvo::model::Controller station(const QString &callsign, quint32 frequency, const QString &name)
{
    tarvo::model::Controller controller;
    controller.callsign = callsign;
    controller.frequency = frequency;
    controller.normalisedFrequency = frequency;
    controller.realName = name;
    return controller;
}

/// An evening's messages.
void fill(MessagesPageViewModel &model)
{
    model.setOwnCallsign(QStringLiteral("CES2352"));
    model.setNetworkConnected(true);
    model.setNearbyController(station(QStringLiteral("ZSPD_TWR"), 118800, QStringLiteral("李想")));
    model.setNearbyController(station(QStringLiteral("ZSPD_GND"), 121700, QStringLiteral("Unknown")));
    model.setNearbyController(station(QStringLiteral("ZSHA_CTR"), 134775, QStringLiteral("Zhang Wei")));
    model.addServerMessage(QStringLiteral("欢迎来到网络。"));
    model.addSystemNote(QStringLiteral("ZSPD_TWR ATIS:"));
    model.addRadioReceived(radio(QStringLiteral("CCA1831"), QStringLiteral("浦东塔台，CCA1831，17L 盲降已建立。")));
    model.addRadioSent(QStringLiteral("浦东塔台，CES2352，请求推出开车，停机位 215。"), {118025});
    model.addRadioReceived(radio(QStringLiteral("ZSPD_TWR"),
                                 QStringLiteral("CES2352，浦东塔台，同意推出开车，朝向东，跑道 16R，应答机 3401。"
                                                "修正海压 1013，风向 170，4 米每秒，能见度大于 10 公里。"),
                                 true));
    model.addRadioSent(QStringLiteral("同意推出开车，朝向东，跑道 16R，应答机 3401，CES2352。"), {118025});
    model.addPrivateReceived(QStringLiteral("ZSHA_CTR"), QStringLiteral("请确认飞行计划中的备降场。"));
    model.addPrivateSent(QStringLiteral("ZSHA_CTR"), QStringLiteral("备降场 ZSNJ。"));
    model.addPrivateReceived(QStringLiteral("CSN3388"), QStringLiteral("晚上好！今晚去哪里？"));
    model.addBroadcast(QStringLiteral("ADMIN_SUP"), QStringLiteral("服务器将在 22:00 维护十分钟。"));
    model.addWallopSent(QStringLiteral("有人在 121.500 上占频。"));
    model.addSelcal(QStringLiteral("ZSHA_CTR"), {134775});
}

/// An input method in the middle of a composition, which commits it when it is told to.
class ComposingInput : public QPlatformInputContext
{
public:
    ComposingInput() { QInputMethodPrivate::get(QGuiApplication::inputMethod())->testContext = this; }
    ~ComposingInput() override { QInputMethodPrivate::get(QGuiApplication::inputMethod())->testContext = nullptr; }

    bool isValid() const override { return true; }

    void compose(const QString &text)
    {
        m_text = text;
        QInputMethodEvent event(text, {});
        QCoreApplication::sendEvent(QGuiApplication::focusObject(), &event);
    }

    void commit() override
    {
        QInputMethodEvent event;
        event.setCommitString(std::exchange(m_text, QString()));
        QCoreApplication::sendEvent(QGuiApplication::focusObject(), &event);
    }

private:
    QString m_text;
};

} // namespace

/// The messages page under real keys, clicks and an input method.
class MessagesPageTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { open({1280, 800}); }

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
        fill(model());
        model().setActiveChannel(channel);
        settle();
        checkBounds();
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
        fill(model());
        m_harness->click(field("channel-SERVER"));
        QCOMPARE(model().activeChannel(), QStringLiteral("SERVER"));
        QTRY_VERIFY(m_harness->itemWithText(QStringLiteral("欢迎来到网络。")));
        QVERIFY(!field("sendButton")->isEnabled());
        m_harness->click(field("channel-WALLOP"));
        QVERIFY(field("sendButton")->isEnabled());
    }

    void aSenderIsAnsweredByAClick()
    {
        fill(model());
        settle();
        m_harness->click(senderOf(QStringLiteral("CCA1831")));
        QCOMPARE(model().draftTarget(), QStringLiteral("CCA1831"));
        QCOMPARE(model().activeChannel(), QStringLiteral("CCA1831"));
        QTRY_VERIFY(field("session-CCA1831"));
    }

    void nobodyAnswersTheServerOrOneself()
    {
        fill(model());
        settle();
        QVERIFY(!senderOf(QStringLiteral("CES2352"))->isEnabled());
        model().setActiveChannel(QStringLiteral("SERVER"));
        settle();
        QVERIFY(!senderOf(QStringLiteral("服务器"))->isEnabled());
        QVERIFY(!senderOf(QStringLiteral("系统"))->isEnabled());
    }

    void aStationIsCalledByAClick()
    {
        fill(model());
        QTRY_VERIFY(field("station-ZSPD_GND"));
        m_harness->click(field("station-ZSPD_GND"));
        QCOMPARE(model().activeChannel(), QStringLiteral("ZSPD_GND"));
        m_harness->type(QStringLiteral("hello"));
        QCOMPARE(model().draftMessage(), QStringLiteral("hello"));
    }

    void aSessionIsClosedByItsCross()
    {
        fill(model());
        QTRY_VERIFY(field("session-CSN3388"));
        QQuickItem *row = field("session-CSN3388");
        m_harness->click(row);
        QCOMPARE(model().activeChannel(), QStringLiteral("CSN3388"));
        m_harness->click(row->findChild<QQuickItem *>(QStringLiteral("closeControl")));
        QCOMPARE(model().activeChannel(), QStringLiteral("RADIO"));
        QTRY_VERIFY(!field("session-CSN3388"));
        QCOMPARE(model().privateSessions().size(), 1);
    }

    void theListIsCleared()
    {
        fill(model());
        settle();
        QVERIFY(!m_harness->itemWithText(QStringLiteral("当前频道暂无消息")));
        m_harness->click(field("clearMessagesButton"));
        QCOMPARE(model().messages(), QVariantList());
        QTRY_VERIFY(m_harness->itemWithText(QStringLiteral("当前频道暂无消息")));
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
        fill(model());
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
        fill(model());
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
        fill(model());
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
        fill(model());
        model().setNetworkConnected(false);
        QVERIFY(!field("sendButton")->isEnabled());
        QVERIFY(!field("composeField")->isEnabled());
        QCOMPARE(field("composeHint")->property("text").toString(), QStringLiteral("网络未连接"));
    }

    void aDraftOutlivesThePage()
    {
        fill(model());
        m_harness->type(QStringLiteral("half a"));
        m_harness->openSection(QStringLiteral("总览"));
        m_harness->openSection(QStringLiteral("消息"));
        QCOMPARE(composed(), QStringLiteral("half a"));
        m_harness->type(QStringLiteral(" word"));
        QCOMPARE(model().draftMessage(), QStringLiteral("half a word"));
    }

    void theListStaysAtTheNewest()
    {
        fill(model());
        for (int i = 0; i < 320; ++i) {
            model().addRadioReceived(
                radio(QStringLiteral("CCA1"), QStringLiteral("%1 ").arg(i).repeated(1 + 7 * (i % 9))));
            if (i % 40 == 0)
                settle();
        }
        QTRY_COMPARE(list()->property("count").toInt(), int(model().activeMessages().size()));
        settle();
        QVERIFY(atEnd());
        QVERIFY(!field("newestButton"));
        m_harness->grab(QStringLiteral("messages-full"));
    }

    void aReaderWhoScrolledUpIsLeftThere()
    {
        fill(model());
        for (int i = 0; i < 290; ++i)
            model().addRadioReceived(radio(QStringLiteral("CCA1"), QStringLiteral("%1").arg(i)));
        settle();
        QVERIFY(atEnd());
        wheel(+480);
        QTRY_VERIFY(field("newestButton"));
        QTRY_VERIFY(!list()->property("moving").toBool());
        QQuickItem *anchor = bodyInSight();
        QVERIFY(anchor);
        const QString text = anchor->property("text").toString();
        const qreal y = anchor->mapToScene({}).y();
        for (int i = 0; i < 15; ++i) // some of the oldest go
            model().addRadioReceived(radio(QStringLiteral("CCA2"), QStringLiteral("new %1").arg(i)));
        QTRY_VERIFY(m_harness->itemWithText(QStringLiteral("15 条新消息 ↓")));
        settle();
        anchor = m_harness->itemWithText(text);
        QVERIFY(anchor);
        QVERIFY(qAbs(anchor->mapToScene({}).y() - y) < 2);
        m_harness->grab(QStringLiteral("messages-scrolled"));
        m_harness->click(field("newestButton"));
        settle();
        QVERIFY(atEnd());
        QVERIFY(!field("newestButton"));
        model().addRadioReceived(radio(QStringLiteral("CCA2"), QStringLiteral("the last")));
        QTRY_VERIFY(m_harness->itemWithText(QStringLiteral("the last")));
        settle();
        QVERIFY(atEnd());
    }

    void scrollingBackToTheEndFollowsAgain()
    {
        for (int i = 0; i < 100; ++i)
            model().addRadioReceived(radio(QStringLiteral("CCA1"), QStringLiteral("%1").arg(i)));
        settle();
        wheel(+240);
        QTRY_VERIFY(field("newestButton"));
        QTRY_VERIFY(!list()->property("moving").toBool());
        wheel(-2400);
        QTRY_VERIFY(!field("newestButton"));
    }

    void hostileTextsAreShownAsTheyAre_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("markup") << QStringLiteral("<b>bold</b><img src='file:///etc/passwd'>&amp;");
        QTest::newRow("right to left override") << QStringLiteral("abc \u202Efdp.exe\u202C def \u200F\u2067x");
        QTest::newRow("Arabic and Hebrew") << QStringLiteral("مرحبا بالعالم שלום עולם");
        QTest::newRow("line breaks") << QStringLiteral("one\ntwo\r\nthree\u2028four\n\n\n\nfive");
        QTest::newRow("many line breaks") << QString(10000, u'\n');
        QTest::newRow("10,000 letters without a break") << QString(10000, u'W');
        QTest::newRow("10,000 Chinese characters") << QString(10000, u'测');
        QTest::newRow("10,000 words") << QStringLiteral("word ").repeated(2000);
        QTest::newRow("marks upon marks")
            << QStringLiteral("Z") + QString(500, QChar(0x0336)) + QString(500, QChar(0x030D));
        QTest::newRow("control characters") << QStringLiteral("a\tb\x01\x07\x1b[31mred");
        QTest::newRow("replacement codes") << QStringLiteral("%1 %2 %n %L1");
        QTest::newRow("lone surrogates") << QString(QChar(0xD83D)).repeated(2500);
    }

    void hostileTextsAreShownAsTheyAre()
    {
        QFETCH(QString, text);
        fill(model());
        model().addRadioReceived(radio(QStringLiteral("EVIL"), text));
        model().addPrivateReceived(QStringLiteral("EVIL"), text);
        model().addPrivateReceived(text.left(3000), text);
        model().setNearbyController(station(QStringLiteral("EVIL_") + text.left(3000), 118000, text));
        settle();
        checkBounds();
        QVERIFY(atEnd());
        m_harness->grab(QStringLiteral("messages-hostile-%1").arg(QString::fromUtf8(QTest::currentDataTag())));
        const QList<QQuickItem *> texts = m_harness->texts();
        for (const QQuickItem *item : texts)
            if (!item->property("text").toString().isEmpty())
                QCOMPARE(item->property("textFormat").toInt(), int(Qt::PlainText));
        model().openPrivateSession(text.left(3000));
        settle();
        checkBounds();
    }

    void aLongTextIsFoldedUntilAskedFor()
    {
        const QString text = QStringLiteral("word ").repeated(2000).trimmed();
        fill(model());
        model().addRadioReceived(radio(QStringLiteral("CCA1"), text));
        settle();
        QTRY_VERIFY(field("foldControl"));
        QVERIFY(!m_harness->itemWithText(text));
        const qreal folded = list()->property("contentHeight").toReal();
        m_harness->click(field("foldControl"));
        QTRY_VERIFY(m_harness->itemWithText(text));
        QTRY_VERIFY(list()->property("contentHeight").toReal() > folded + 500);
        settle();
        const QQuickItem *body = m_harness->itemWithText(text);
        QVERIFY(body->mapToItem(list(), QPointF()).y() > 0); // one reads on where one was
        QVERIFY(field("newestButton"));
        checkBounds();
        m_harness->grab(QStringLiteral("messages-unfolded"));
        m_harness->click(field("newestButton"));
        settle();
        m_harness->click(field("foldControl"));
        QTRY_VERIFY(!m_harness->itemWithText(text));
        settle();
        QVERIFY(atEnd());
        QTRY_VERIFY(!field("newestButton"));
    }

    void theEmptyPageTellsWhatIsMissing()
    {
        QVERIFY(m_harness->itemWithText(QStringLiteral("当前频道暂无消息")));
        QVERIFY(m_harness->itemWithText(QStringLiteral("附近暂无管制席位")));
        QVERIFY(m_harness->itemWithText(QStringLiteral("暂无消息")));
        checkBounds();
        m_harness->grab(QStringLiteral("messages-empty"));
    }

    void aFloodOfSendersKeepsThePageUsable()
    {
        fill(model());
        for (int i = 0; i < 2000; ++i)
            model().addPrivateReceived(QStringLiteral("P%1").arg(i), QStringLiteral("buy now"));
        settle();
        QCOMPARE(field("sessionList")->property("count").toInt(), 200);
        QVERIFY(field("channel-RADIO"));
        m_harness->grab(QStringLiteral("messages-flood"));
    }

private:
    MessagesPageViewModel &model() { return m_harness->messages(); }
    QQuickItem *field(const char *name) { return m_harness->item(QString::fromLatin1(name)); }
    QQuickItem *list() { return field("messageList"); }
    QString composed() { return field("composeField")->property("text").toString(); }

    void open(QSize size)
    {
        m_harness = std::make_unique<PageHarness>(PageHarness::Backends::Present, size);
        m_harness->dashboard().setCurrentMode(QStringLiteral("XPLANE"));
        m_harness->fillAccount();
        m_harness->openSection(QStringLiteral("消息"));
    }

    /// Lets what waits for the next turn of the loop happen, and the layout with it.
    void settle()
    {
        for (int i = 0; i < 3; ++i) {
            QSignalSpy frame(&m_harness->view, &QQuickWindow::afterAnimating);
            m_harness->view.update();
            QVERIFY(frame.wait(2000));
            QCoreApplication::processEvents();
        }
    }

    bool atEnd()
    {
        const QQuickItem *view = list();
        const qreal end = view->property("originY").toReal() + view->property("contentHeight").toReal();
        return view->property("contentY").toReal() + view->height() >= end - 1;
    }

    void wheel(int angle)
    {
        const QPointF centre = list()->mapToScene(QPointF(list()->width() / 2, list()->height() / 2));
        QWheelEvent event(centre, m_harness->view.mapToGlobal(centre.toPoint()), {}, {0, angle}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        event.setTimestamp(m_wheelTime += 100); // without time between them, turns of a wheel are none
        QCoreApplication::sendEvent(&m_harness->view, &event);
    }

    QQuickItem *senderOf(const QString &callsign)
    {
        QQuickItem *text = nullptr;
        const QList<QQuickItem *> texts = m_harness->texts();
        for (QQuickItem *candidate : texts)
            if (candidate->property("text").toString() == callsign &&
                candidate->parentItem()->objectName() == QLatin1String("sender"))
                text = candidate;
        return text ? text->parentItem() : nullptr;
    }

    /// A message's text in the middle of the list.
    QQuickItem *bodyInSight()
    {
        const QRectF sight = list()->mapRectToScene(QRectF(0, 100, list()->width(), list()->height() - 200));
        const QList<QQuickItem *> texts = m_harness->texts();
        for (QQuickItem *text : texts)
            if (text->objectName() == QLatin1String("body") && sight.contains(text->mapToScene({})))
                return text;
        return nullptr;
    }

    /// No text reaches beyond its own box, and no box beyond the window's width.
    void checkBounds()
    {
        const QList<QQuickItem *> texts = m_harness->texts();
        for (const QQuickItem *text : texts) {
            const QString shown = text->property("text").toString().left(80);
            const bool cut = text->clip();
            QVERIFY2(cut || text->property("contentWidth").toReal() <= text->width() + 1, qPrintable(shown));
            const QRectF box = text->mapRectToScene(QRectF(0, 0, text->width(), text->height()));
            QVERIFY2(box.left() >= -1 && box.right() <= m_harness->view.width() + 1, qPrintable(shown));
        }
    }

    std::unique_ptr<PageHarness> m_harness;
    quint64 m_wheelTime = 1000; ///< ms
};

TARVO_TEST(MessagesPageTest)
#include "MessagesPageTest.moc"
