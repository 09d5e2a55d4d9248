#include "ComposingInput.h"
#include "Contrast.h"
#include "PageHarness.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QGuiApplication>
#include <QObject>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <memory>

using tarvo::test::ComposingInput;
using tarvo::test::PageHarness;
using tarvo::ui::LinkState;
using tarvo::ui::MessagesPageViewModel;

/// The compact view under real keys and clicks.
class CompactWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_harness = std::make_unique<PageHarness>(u"XPLANE"_qs); }

    void init()
    {
        m_harness->compact().setPlace({40, 30, 420, 260});
        m_harness->messages().clearMessages();
        m_harness->messages().setNetworkConnected(true);
        m_harness->click(m_harness->item(u"compactTool"_qs));
        TRY_VERIFY(window());
    }

    void cleanup()
    {
        m_harness->compact().setOpen(false);
        TRY_VERIFY(!window());
        QCOMPARE(m_harness->complaints(), QStringList());
    }

    void cleanupTestCase() { m_harness.reset(); }

    void itTakesNoKeyboardUnlessClicked()
    {
        QCOMPARE(window()->geometry(), QRect(40, 30, 420, 260));
        const Qt::WindowFlags flags = window()->flags();
        QVERIFY(flags.testFlag(Qt::WindowStaysOnTopHint));
        QVERIFY(flags.testFlag(Qt::FramelessWindowHint));
        QVERIFY(!flags.testFlag(Qt::WindowDoesNotAcceptFocus));
        QCOMPARE(flags & Qt::WindowType_Mask, Qt::Tool);
        QVERIFY(window()->property("_q_showWithoutActivating").toBool());
        QVERIFY(!window()->transientParent()); // else it is minimised with the main window
    }

    void itShowsTheWholeClient()
    {
        m_harness->fillSimulator(u"XPLANE"_qs);
        m_harness->fillFlight();
        m_harness->status().setNetwork(true, LinkState::Connected);
        m_harness->fillVoice();
        m_harness->messages().addPrivateReceived(u"ZBAA_TWR"_qs,
                                                 u"CES2352，北京塔台，同意推出开车，应答机 3401，修正海压 1013，"
                                                 u"跑道 36R，有情况联系 121.700。"_qs);
        TRY_VERIFY(item(u"compactTx"_qs));
        for (const char16_t *name :
             {u"compactStatus-server", u"compactStatus-simulator", u"compactRx", u"compactIdent"})
            QVERIFY(item(QString::fromUtf16(name)));
        for (const char16_t *text : {u"118.500", u"ZBAA_W_APP +2", u"121.500", u"2145", u"ZBAA_TWR"})
            QVERIFY2(shows(window()->contentItem(), QString::fromUtf16(text)), qPrintable(QString::fromUtf16(text)));
        grab(u"compact"_qs);
        m_harness->status().networkFailed(u"被强制断开：You have been removed from the network by a supervisor"_qs);
        TRY_VERIFY(item(u"compactTrouble"_qs));
        QVERIFY(itemText(u"compactTrouble"_qs).startsWith(u"网络"_qs));
        QVERIFY(itemText(u"compactText"_qs).startsWith(u"CES2352"_qs)); // it stays
        grab(u"compact-failed"_qs);
        QVERIFY(item(u"compactText"_qs)->height() >= 19); // a line
        click(u"compactDismiss"_qs);
        QVERIFY(!item(u"compactTrouble"_qs));
    }

    void whatFailsBehindItIsToldHere()
    {
        m_harness->compact().setOpen(false);
        m_harness->openSection(u"服务器"_qs); // which tells of it, but isn't seen
        m_harness->compact().setOpen(true);
        TRY_VERIFY(window());
        m_harness->status().networkFailed(u"服务器没有应答。"_qs);
        TRY_VERIFY(item(u"compactTrouble"_qs));
        m_harness->compact().setOpen(false);
        QCOMPARE(m_harness->status().bannerText(), QString()); // there it stands again
        m_harness->openSection(u"总览"_qs);
    }

    void eachSoundIsSeen_data()
    {
        QTest::addColumn<QString>("message");
        QTest::newRow("before the first message") << QString();
        QTest::newRow("over one of blanks") << u"  "_qs;
    }
    void eachSoundIsSeen()
    {
        QFETCH(QString, message);
        if (!message.isEmpty())
            m_harness->messages().addPrivateReceived(u"CCA1"_qs, message);
        m_harness->sounds().showSign(QUrl(u"qrc:/resources/sounds/connect.mp3"_qs));
        TRY_VERIFY(item(u"soundSign"_qs));
        grab(u"compact-sign"_qs);
    }

    void aTextOfBlanksHasASender()
    {
        m_harness->messages().addPrivateReceived(u"CCA1"_qs, u"  "_qs);
        QCOMPARE(itemText(u"compactFrom"_qs), u"CCA1"_qs);
        QCOMPARE(itemText(u"compactText"_qs), QString());
        QVERIFY(item(u"compactUnread"_qs));
    }

    void whatIsBeingComposedGoesToWhomItWasBegunFor()
    {
        ComposingInput input;
        m_harness->messages().addPrivateReceived(u"CCA1"_qs, u"where are you?"_qs);
        click(u"compactLine"_qs);
        TRY_VERIFY(item(u"compactLine"_qs)->hasActiveFocus());
        QVERIFY(!item(u"compactTarget"_qs));
        input.compose(u"bei jing"_qs);
        QCOMPARE(itemText(u"compactTarget"_qs), u"→ CCA1"_qs);
        m_harness->messages().addPrivateReceived(u"CSN2"_qs, u"hello"_qs);
        QCOMPARE(itemText(u"compactTarget"_qs), u"→ CCA1"_qs);
        grab(u"compact-target"_qs);
        const QSignalSpy sent(&m_harness->messages(), &MessagesPageViewModel::privateMessageRequested);
        QTest::keyClick(window(), Qt::Key_Return);
        QCOMPARE(sent, (QList<QVariantList>{{u"CCA1"_qs, u"bei jing"_qs}}));
        QCOMPARE(itemText(u"compactHint"_qs), u"回复 CSN2..."_qs);
    }

    void theLineAnswers()
    {
        m_harness->messages().addPrivateReceived(u"CCA1"_qs, u"where are you?"_qs);
        const QSignalSpy sent(&m_harness->messages(), &MessagesPageViewModel::privateMessageRequested);
        QCOMPARE(itemText(u"compactHint"_qs), u"回复 CCA1..."_qs);
        click(u"compactLine"_qs);
        TRY_VERIFY(item(u"compactLine"_qs)->hasActiveFocus());
        QTest::keyClick(window(), Qt::Key_O);
        QTest::keyClick(window(), Qt::Key_K);
        QTest::keyClick(window(), Qt::Key_Return);
        QCOMPARE(sent, (QList<QVariantList>{{u"CCA1"_qs, u"ok"_qs}}));
        QCOMPARE(item(u"compactLine"_qs)->property("text").toString(), QString());
    }

    void aNoteHasRoom()
    {
        m_harness->sounds().showSign(QUrl(u"qrc:/resources/sounds/manager.mp3"_qs));
        m_harness->messages().addPrivateReceived(u"CCA1"_qs, u"where are you?"_qs);
        m_harness->status().simulatorFailed(u"没有应答"_qs);
        m_harness->status().setSimulator(true, LinkState::Connected);
        m_harness->status().setSimulator(false, LinkState::Absent);
        m_harness->status().simulatorFailed(u"没有应答"_qs);
        TRY_VERIFY(item(u"compactTrouble"_qs));
        m_harness->compact().setDraft(u"在北京"_qs);
        TRY_VERIFY(item(u"compactNote"_qs));
        QVERIFY(!item(u"compactTrouble"_qs)); // until the note is gone
        const QQuickItem *note = item(u"compactNote"_qs);
        TRY_VERIFY(note->mapToScene({0, note->height()}).y() <= 250);
        grab(u"compact-note"_qs);
        QVERIFY(item(u"soundSign"_qs)->x() + item(u"soundSign"_qs)->width() < item(u"compactUnread"_qs)->x());
        QVERIFY(item(u"compactText"_qs)->height() >= 19); // a line
        m_harness->compact().setDraft({});
        TRY_VERIFY(item(u"compactTrouble"_qs));
        m_harness->status().dismissBanner();
    }

    void aButtonThatIsOffDoesNotShine()
    {
        const QQuickItem *button = item(u"compactSend"_qs);
        QVERIFY(button && !button->isEnabled());
        const QImage picture = window()->grabWindow();
        const QPointF edge = button->mapToScene({6, button->height() / 2}) * picture.width() / window()->width();
        QCOMPARE(picture.pixelColor(edge.toPoint()).name(), u"#2b3b57"_qs);
    }

    void escapeAndItsKeysLeaveIt_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::newRow("escape") << Qt::Key_Escape << Qt::KeyboardModifiers();
        QTest::newRow("the keys that open it") << Qt::Key_0 << Qt::KeyboardModifiers(Qt::ControlModifier);
    }
    void escapeAndItsKeysLeaveIt()
    {
        QFETCH(Qt::Key, key);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        window()->requestActivate();
        TRY_VERIFY(window()->isActive());
        QSignalSpy left(&m_harness->compact(), &tarvo::ui::CompactViewModel::placeLeft);
        window()->setPosition(200, 100);
        QTest::keyClick(window(), key, modifiers);
        TRY_VERIFY(!window());
        QCOMPARE(left, (QList<QVariantList>{{QRect(200, 100, 420, 260)}}));
        m_harness->view.requestActivate();
        TRY_VERIFY(m_harness->view.isActive());
    }

    void aKeyThatIsBeingCapturedLeavesItOpen()
    {
        m_harness->fillVoiceSettings();
        m_harness->voiceSettings().startPttListening();
        QTest::keyClick(window(), Qt::Key_0, Qt::ControlModifier);
        QTest::keyClick(window(), Qt::Key_Escape);
        m_harness->voiceSettings().stopPttListening();
        QVERIFY(m_harness->compact().isOpen());
    }

    void theButtonLeavesIt()
    {
        click(u"compactLeave"_qs);
        TRY_VERIFY(!window());
    }

private:
    static QQuickWindow *window()
    {
        const QList<QWindow *> all = QGuiApplication::topLevelWindows();
        for (QWindow *candidate : all)
            if (candidate->objectName() == QLatin1String("compactWindow") && candidate->isVisible())
                return qobject_cast<QQuickWindow *>(candidate);
        return nullptr;
    }

    static QQuickItem *itemBelow(QQuickItem *from, const QString &name)
    {
        if (from->objectName() == name && from->isVisible())
            return from;
        const QList<QQuickItem *> children = from->childItems();
        for (QQuickItem *child : children)
            if (QQuickItem *found = itemBelow(child, name))
                return found;
        return nullptr;
    }
    static QQuickItem *item(const QString &name) { return itemBelow(window()->contentItem(), name); }
    static QString itemText(const QString &name)
    {
        return item(name) ? item(name)->property("text").toString() : u"-"_qs;
    }

    static bool shows(const QQuickItem *from, const QString &text)
    {
        if (from->isVisible() && from->property("text").toString() == text)
            return true;
        const QList<QQuickItem *> children = from->childItems();
        return std::any_of(children.begin(), children.end(),
                           [&text](const QQuickItem *child) { return shows(child, text); });
    }

    static void click(const QString &name)
    {
        QQuickItem *clicked = item(name);
        QVERIFY(clicked);
        QTest::mouseClick(window(), Qt::LeftButton, {},
                          clicked->mapToScene({clicked->width() / 2, clicked->height() / 2}).toPoint());
    }

    /// A long message or reason is read in the main window.
    static bool mayBeCut(const QQuickItem *text)
    {
        return text->objectName() == QLatin1String("compactText") ||
               text->objectName() == QLatin1String("compactTrouble");
    }

    static void grab(const QString &name)
    {
        window()->grabWindow(); // lays it out
        const QImage picture = tarvo::test::keep(window()->grabWindow(), name);
        const QList<QQuickItem *> texts = PageHarness::textsOf(*window());
        const QStringList pale = tarvo::test::paleTexts(texts, picture, {});
        QVERIFY2(pale.isEmpty(), qPrintable(pale.join(u"; "_qs)));
        for (const QQuickItem *text : texts)
            QVERIFY2(mayBeCut(text) || !text->property("truncated").toBool(),
                     qPrintable(text->property("text").toString()));
    }

    std::unique_ptr<PageHarness> m_harness;
};

TARVO_TEST(CompactWindowTest)
#include "CompactWindowTest.moc"
