#include "ComposingInput.h"
#include "MessagesPageFixture.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QGuiApplication>
#include <QObject>
#include <QSignalSpy>
#include <QStyleHints>
#include <QTest>

using tarvo::test::ComposingInput;
using tarvo::test::fillMessages;
using tarvo::test::radioText;
using tarvo::test::stationCalled;
using tarvo::ui::MessagesPageViewModel;
using tarvo::ui::SimulatorPageViewModel;

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

    void aChannelIsSearchedByKeys()
    {
        fillMessages(model());
        QTest::keyClick(&m_harness->view, Qt::Key_F, Qt::ControlModifier);
        QVERIFY(field("searchField")->hasActiveFocus());
        m_harness->type(u"cca1831"_qs);
        QCOMPARE(list()->property("count").toInt(), 1);
        QVERIFY(m_harness->itemWithText(u"找到 1 条"_qs));
        m_harness->settle();
        m_harness->grab(u"messages-search"_qs);
        m_harness->type(u"xyz"_qs);
        QVERIFY(m_harness->itemWithText(u"没有找到"_qs));
        QTest::keyClick(&m_harness->view, Qt::Key_Escape);
        QVERIFY(!field("searchField"));
        QVERIFY(field("composeField")->hasActiveFocus());
        QCOMPARE(list()->property("count").toInt(), 4);
    }

    void escapeEndsASearchFromAnywhere()
    {
        fillMessages(model());
        QTest::keyClick(&m_harness->view, Qt::Key_F, Qt::ControlModifier);
        m_harness->type(u"xyz"_qs);
        QTest::keyClick(&m_harness->view, Qt::Key_L, Qt::ControlModifier);
        QVERIFY(field("composeField")->hasActiveFocus());
        QTest::keyClick(&m_harness->view, Qt::Key_Escape);
        QVERIFY(!field("searchField"));
        QCOMPARE(model().searchText(), QString());
    }

    void escapeLeavesTheToursCardAndTheSearch()
    {
        fillMessages(model());
        m_harness->tour().begin();
        m_harness->tour().next();
        QTest::keyClick(&m_harness->view, Qt::Key_F, Qt::ControlModifier);
        QTest::keyClick(&m_harness->view, Qt::Key_Escape);
        QTest::keyClick(&m_harness->view, Qt::Key_Escape);
        QVERIFY(!field("searchField"));
        QCOMPARE(m_harness->tour().step(), 0);
    }

    void whatASearchHidesIsTold()
    {
        fillMessages(model());
        addRadioTexts(60);
        QTest::keyClick(&m_harness->view, Qt::Key_F, Qt::ControlModifier);
        m_harness->type(u"cca"_qs);
        QVERIFY(!field("hiddenNews"));
        model().addRadioReceived(radioText(u"ZSPD_TWR"_qs, u"contact ground"_qs));
        m_harness->settle();
        QVERIFY(field("hiddenNews"));
        QCOMPARE(field("hiddenNews")->property("text").toString(), u"另有 1 条新消息"_qs);
        QCOMPARE(m_harness->textsOutOfBounds(), QStringList());
        m_harness->grab(u"messages-search-news"_qs);
        m_harness->click(field("hiddenNews"));
        m_harness->settle();
        QVERIFY(!field("searchField"));
        QVERIFY(atEnd());
    }

    void whatIsSentEndsASearch()
    {
        fillMessages(model());
        QTest::keyClick(&m_harness->view, Qt::Key_F, Qt::ControlModifier);
        m_harness->type(u"a"_qs);
        QTest::keyClick(&m_harness->view, Qt::Key_Backspace);
        QVERIFY(field("searchField")); // another word may come
        m_harness->type(u"xyz"_qs);
        QTest::keyClick(&m_harness->view, Qt::Key_L, Qt::ControlModifier);
        model().addRadioSent(u"wilco"_qs, {118025});
        QVERIFY(!field("searchField"));
        QCOMPARE(list()->property("count").toInt(), 5);
    }

    void aSearchKeepsTheKeysWhenTheNetworkComes()
    {
        fillMessages(model());
        model().setNetworkConnected(false);
        QTest::keyClick(&m_harness->view, Qt::Key_F, Qt::ControlModifier);
        m_harness->type(u"cc"_qs);
        model().setNetworkConnected(true);
        m_harness->type(u"a"_qs);
        QCOMPARE(model().searchText(), u"cca"_qs);
        QCOMPARE(model().draftMessage(), QString());
    }

    void theLineHasTheKeysWhenItCanBeUsed()
    {
        fillMessages(model());
        QVERIFY(field("composeField")->hasActiveFocus());
        model().setNetworkConnected(false);
        QVERIFY(field("messagePane")->hasActiveFocus());
        model().setNetworkConnected(true);
        QVERIFY(field("composeField")->hasActiveFocus());
    }

    void theSessionsAreNotSearched()
    {
        fillMessages(model());
        model().setActiveChannel(u"PRIVATE"_qs);
        m_harness->settle();
        QTest::keyClick(&m_harness->view, Qt::Key_F, Qt::ControlModifier);
        QVERIFY(!field("searchField"));
        QVERIFY(!field("searchButton")->isEnabled());
    }

    void anExportIsOfTheWholeChannel()
    {
        fillMessages(model());
        model().setSearchText(u"xyz"_qs);
        QVERIFY(field("exportButton")->isEnabled());
        model().clearMessages();
        QVERIFY(!field("exportButton")->isEnabled());
    }

    void anExportTellsHowItWent()
    {
        QVERIFY(!field("exportButton")->isEnabled()); // nothing to write
        fillMessages(model());
        m_harness->settle();
        const QSignalSpy asked(&model(), &MessagesPageViewModel::exportRequested);
        m_harness->click(field("exportButton"));
        QCOMPARE(asked.size(), 1);
        QVERIFY(!field("exportNote"));
        model().setExportNote(u"无法写入 /media/usb/TARVO 无线电 2026-11-22.txt：No space left on device"_qs, true);
        m_harness->settle();
        const QQuickItem *button = field("exportButton");
        const QQuickItem *note = field("exportNote");
        QVERIFY(note->mapToScene({0, 0}).y() >= button->mapToScene({0, button->height()}).y());
        QCOMPARE(m_harness->textsOutOfBounds(), QStringList());
        m_harness->grab(u"messages-export"_qs);
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
        m_harness->grab(u"messages-%1-%2"_qs.arg(channel.toLower()).arg(size.width()));
    }

    void theSidebarsBadge_data()
    {
        QTest::addColumn<int>("unread");
        QTest::addColumn<QString>("text"); // empty: hidden
        QTest::newRow("none") << 0 << QString();
        QTest::newRow("one") << 1 << u"1"_qs;
        QTest::newRow("99") << 99 << u"99"_qs;
        QTest::newRow("100") << 100 << u"99+"_qs;
        QTest::newRow("all that the list can hold") << 300 << u"99+"_qs;
        QTest::newRow("more") << 320 << u"99+"_qs;
    }

    void theSidebarsBadge()
    {
        QFETCH(int, unread);
        QFETCH(QString, text);
        for (int i = 0; i < unread; ++i)
            model().addServerMessage(u"text"_qs);
        const QQuickItem *badge = field("sidebarBadge");
        QCOMPARE(badge != nullptr, !text.isEmpty());
        if (badge)
            QCOMPARE(badge->childItems().value(0)->property("text").toString(), text);
        model().setActiveChannel(u"SERVER"_qs);
        QVERIFY(!field("sidebarBadge"));
    }

    void aChannelIsChosenByAClick()
    {
        fillMessages(model());
        m_harness->click(field("channel-SERVER"));
        QCOMPARE(model().activeChannel(), u"SERVER"_qs);
        TRY_VERIFY(m_harness->itemWithText(u"欢迎来到网络。"_qs));
        QVERIFY(!field("sendButton")->isEnabled());
        m_harness->click(field("channel-WALLOP"));
        QVERIFY(field("sendButton")->isEnabled());
    }

    void aSenderIsAnsweredByAClick()
    {
        fillMessages(model());
        m_harness->settle();
        m_harness->click(senderOf(u"CCA1831"_qs));
        QCOMPARE(model().draftTarget(), u"CCA1831"_qs);
        QCOMPARE(model().activeChannel(), u"CCA1831"_qs);
        TRY_VERIFY(field("session-CCA1831"));
    }

    void nobodyAnswersTheServerOrOneself()
    {
        fillMessages(model());
        m_harness->settle();
        QVERIFY(!senderOf(u"CES2352"_qs)->isEnabled());
        model().setActiveChannel(u"SERVER"_qs);
        m_harness->settle();
        QVERIFY(!senderOf(u"服务器"_qs)->isEnabled());
        QVERIFY(!senderOf(u"系统"_qs)->isEnabled());
    }

    void aStationIsCalledByAClick()
    {
        fillMessages(model());
        TRY_VERIFY(field("station-ZSPD_GND"));
        m_harness->click(field("station-ZSPD_GND"));
        QCOMPARE(model().activeChannel(), u"ZSPD_GND"_qs);
        m_harness->type(u"hello"_qs);
        QCOMPARE(model().draftMessage(), u"hello"_qs);
    }

    void aStationsFrequencyTunes_data()
    {
        QTest::addColumn<Qt::MouseButton>("button");
        QTest::addColumn<QString>("tuned");
        QTest::newRow("click") << Qt::LeftButton << u"COM1 121.700"_qs;
        QTest::newRow("right button") << Qt::RightButton << u"COM2 121.700"_qs;
    }
    void aStationsFrequencyTunes()
    {
        QFETCH(Qt::MouseButton, button);
        fillMessages(model());
        m_harness->settle();
        QString tuned;
        connect(&m_harness->simulator(), &SimulatorPageViewModel::setCom1FrequencyRequested, this,
                [&tuned](const QString &frequency) { tuned += u"COM1 "_qs + frequency; });
        connect(&m_harness->simulator(), &SimulatorPageViewModel::setCom2FrequencyRequested, this,
                [&tuned](const QString &frequency) { tuned += u"COM2 "_qs + frequency; });
        const QQuickItem *control = field("tune-ZSPD_GND");
        QVERIFY(control);
        QTest::mouseClick(&m_harness->view, button, {},
                          control->mapToScene({control->width() / 2, control->height() / 2}).toPoint());
        QTEST(tuned, "tuned");
        QCOMPARE(model().activeChannel(), u"RADIO"_qs); // the station isn't called
    }

    void aLongPressTunesTheSecondRadio()
    {
        fillMessages(model());
        m_harness->settle();
        QStringList tuned;
        connect(&m_harness->simulator(), &SimulatorPageViewModel::setCom1FrequencyRequested, this,
                [&tuned](const QString &frequency) { tuned += u"COM1 "_qs + frequency; });
        connect(&m_harness->simulator(), &SimulatorPageViewModel::setCom2FrequencyRequested, this,
                [&tuned](const QString &frequency) { tuned += u"COM2 "_qs + frequency; });
        const QQuickItem *control = field("tune-ZSPD_GND");
        QVERIFY(control);
        const QPoint at = control->mapToScene({control->width() / 2, control->height() / 2}).toPoint();
        QStyleHints *hints = QGuiApplication::styleHints();
        const int usual = hints->mousePressAndHoldInterval();
        hints->setMousePressAndHoldInterval(1);
        QTest::mousePress(&m_harness->view, Qt::LeftButton, {}, at);
        TRY_COMPARE(tuned, QStringList{u"COM2 121.700"_qs});
        hints->setMousePressAndHoldInterval(usual);
        QTest::mouseRelease(&m_harness->view, Qt::LeftButton, {}, at);
        QCOMPARE(tuned.size(), 1); // the release is no click
    }

    void aStationIsAskedForItsAtis()
    {
        fillMessages(model());
        m_harness->settle();
        QSignalSpy asked(&model(), &MessagesPageViewModel::atisRequested);
        m_harness->click(field("atis-ZSPD_TWR"));
        QCOMPARE(asked, (QList<QVariantList>{{u"ZSPD_TWR"_qs}}));
    }

    void whatCannotGoAsTypedIsTold()
    {
        fillMessages(model());
        m_harness->settle();
        QVERIFY(!field("composeNote"));
        model().setDraftMessage(u"你好"_qs);
        m_harness->settle();
        QCOMPARE(field("composeNote")->property("text").toString(), u"2 个字符无法传送，对方将看到：??"_qs);
        model().setTransmitting(false);
        m_harness->settle();
        QSignalSpy sent(&model(), &MessagesPageViewModel::radioMessageRequested);
        QVERIFY(!field("sendButton")->isEnabled());
        QTest::keyClick(&m_harness->view, Qt::Key_Return);
        QCOMPARE(sent.size(), 0);
        QCOMPARE(model().draftMessage(), u"你好"_qs); // it isn't lost
        m_harness->grab(u"messages-note-1280"_qs);
    }

    void whatHasJustBeenSentComesIntoSight()
    {
        addRadioTexts(60);
        m_harness->settle();
        QTest::keyClick(&m_harness->view, Qt::Key_PageUp);
        m_harness->settle();
        QVERIFY(!atEnd());
        addRadioTexts(1);
        m_harness->settle();
        QVERIFY(!atEnd());
        model().addRadioSent(u"own"_qs, {118025});
        m_harness->settle();
        QVERIFY(atEnd());
    }

    void theOverviewOfPrivateTextsShowsTheSessions()
    {
        fillMessages(model());
        model().setActiveChannel(u"PRIVATE"_qs);
        m_harness->settle();
        QVERIFY(field("overview-CSN3388"));
        m_harness->click(field("overview-CSN3388"));
        QCOMPARE(model().activeChannel(), u"CSN3388"_qs);
        QVERIFY(!field("overview-CSN3388"));
    }

    void theColumnIsTitled() { QCOMPARE(field("columnTitle")->property("title").toString(), u"消息"_qs); }

    void aStationShowsItsWholeName()
    {
        open({1000, 700});
        model().setNearbyController(stationCalled(u"ZSPD_TWR"_qs, 118800, u"Liu Fangyuan"_qs));
        TRY_VERIFY(m_harness->itemWithText(u"Liu Fangyuan"_qs));
        m_harness->settle();
        QVERIFY(!m_harness->itemWithText(u"Liu Fangyuan"_qs)->property("truncated").toBool());
        QVERIFY(!m_harness->itemWithText(u"118.800"_qs)->property("truncated").toBool());
        QVERIFY(!m_harness->itemWithText(u"ZSPD_TWR"_qs)->property("truncated").toBool());
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
        QVERIFY(m_harness->tabTo(u"session-CSN3388"_qs));
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
        QVERIFY(m_harness->tabTo(u"channel-WALLOP"_qs));
        const qsizetype channels = model().channels().size();
        QTest::keyClick(&m_harness->view, Qt::Key_Delete);
        QCOMPARE(model().channels().size(), channels);
        QTest::keyClick(&m_harness->view, Qt::Key_Return);
        QCOMPARE(model().activeChannel(), u"WALLOP"_qs);
    }

    void aSessionOutOfSightIsScrolledTo()
    {
        fillMessages(model());
        for (int i = 0; i < 12; ++i)
            model().addPrivateReceived(u"P%1"_qs.arg(i), u"text"_qs);
        m_harness->settle();
        QQuickItem *sessions = field("sessionList");
        const QString last = model().privateSessions().constLast().toMap().value(u"callsign"_qs).toString();
        QVERIFY(m_harness->tabTo(u"session-"_qs + last));
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
        QCOMPARE(model().activeChannel(), u"CSN3388"_qs);
        m_harness->click(row->findChild<QQuickItem *>(u"closeControl"_qs));
        QCOMPARE(model().activeChannel(), u"RADIO"_qs);
        TRY_VERIFY(!field("session-CSN3388"));
        QCOMPARE(model().privateSessions().size(), 1);
    }

    void theListIsCleared()
    {
        fillMessages(model());
        m_harness->settle();
        QVERIFY(!m_harness->itemWithText(u"当前频道暂无消息"_qs));
        m_harness->click(field("clearMessagesButton"));
        QCOMPARE(model().messages(), QVariantList());
        TRY_VERIFY(m_harness->itemWithText(u"当前频道暂无消息"_qs));
    }

    void sendingGoesToTheActiveChannel_data()
    {
        QTest::addColumn<QString>("channel");
        QTest::addColumn<QList<QVariantList>>("privates");
        QTest::addColumn<QList<QVariantList>>("radios");
        QTest::addColumn<QList<QVariantList>>("wallops");
        const QString text = u"hello there"_qs;
        const QList<QVariantList> none;
        QTest::newRow("radio") << u"RADIO"_qs << none << QList<QVariantList>{{text}} << none;
        QTest::newRow("wallop") << u"WALLOP"_qs << none << none << QList<QVariantList>{{text}};
        QTest::newRow("private") << u"CSN3388"_qs << QList<QVariantList>{{u"CSN3388"_qs, text}} << none << none;
    }

    void sendingGoesToTheActiveChannel()
    {
        QFETCH(QString, channel);
        fillMessages(model());
        model().setActiveChannel(channel);
        QSignalSpy privates(&model(), &MessagesPageViewModel::privateMessageRequested);
        QSignalSpy radios(&model(), &MessagesPageViewModel::radioMessageRequested);
        QSignalSpy wallops(&model(), &MessagesPageViewModel::wallopRequested);
        m_harness->type(u"hello there"_qs);
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
        m_harness->type(u"one"_qs);
        QTest::keyClick(&m_harness->view, Qt::Key_Return);
        m_harness->type(u"two"_qs);
        QTest::keyClick(&m_harness->view, Qt::Key_Enter);
        m_harness->type(u"  "_qs);
        QTest::keyClick(&m_harness->view, Qt::Key_Return);
        QCOMPARE(radios, (QList<QVariantList>{{u"one"_qs}, {u"two"_qs}}));
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
        m_harness->type(u"a"_qs);
        ComposingInput input;
        input.compose(u"你好"_qs);
        QCOMPARE(field("composeField")->property("preeditText").toString(), u"你好"_qs);
        QCOMPARE(composed(), u"a"_qs);
        if (click)
            m_harness->click(field("sendButton"));
        else
            QTest::keyClick(&m_harness->view, Qt::Key_Return);
        QCOMPARE(radios, (QList<QVariantList>{{u"a你好"_qs}}));
        QCOMPARE(composed(), QString());
    }

    void offlineNothingCanBeWritten()
    {
        fillMessages(model());
        model().setNetworkConnected(false);
        QVERIFY(!field("sendButton")->isEnabled());
        QVERIFY(!field("composeField")->isEnabled());
        QCOMPARE(field("composeHint")->property("text").toString(), u"网络未连接"_qs);
    }

    void aDraftOutlivesThePage()
    {
        fillMessages(model());
        m_harness->type(u"half a"_qs);
        m_harness->openSection(u"总览"_qs);
        m_harness->openSection(u"消息"_qs);
        QCOMPARE(composed(), u"half a"_qs);
        m_harness->type(u" word"_qs);
        QCOMPARE(model().draftMessage(), u"half a word"_qs);
    }

    void theEmptyPageTellsWhatIsMissing()
    {
        QVERIFY(m_harness->itemWithText(u"当前频道暂无消息"_qs));
        QVERIFY(m_harness->itemWithText(u"附近暂无管制席位"_qs));
        QVERIFY(m_harness->itemWithText(u"暂无消息"_qs));
        QCOMPARE(m_harness->textsOutOfBounds(), QStringList());
        m_harness->grab(u"messages-empty"_qs);
    }

    void aFloodOfSendersKeepsThePageUsable()
    {
        fillMessages(model());
        for (int i = 0; i < 2000; ++i)
            model().addPrivateReceived(u"P%1"_qs.arg(i), u"buy now"_qs);
        m_harness->settle();
        QCOMPARE(field("sessionList")->property("count").toInt(), 200);
        QVERIFY(field("channel-RADIO"));
        m_harness->grab(u"messages-flood"_qs);
    }
};

TARVO_TEST(MessagesPageTest)
#include "MessagesPageTest.moc"
