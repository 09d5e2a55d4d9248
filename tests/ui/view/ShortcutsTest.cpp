#include "PageHarness.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QTest>

#include <memory>

using tarvo::test::PageHarness;

/// Keys that work on every page, and where they are told.
class ShortcutsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_harness = std::make_unique<PageHarness>(u"XPLANE"_qs); }

    void init()
    {
        m_harness->dashboard().setCurrentMode(u"XPLANE"_qs);
        m_harness->messages().setNetworkConnected(true);
        press(Qt::Key_1, Qt::ControlModifier);
    }

    void cleanup()
    {
        press(Qt::Key_Escape);
        TRY_VERIFY(!m_harness->item(u"shortcutSheetClose"_qs));
        QCOMPARE(m_harness->complaints(), QStringList());
    }

    void cleanupTestCase() { m_harness.reset(); }

    void everyPageHasItsKeys_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<QString>("section");
        QTest::newRow("overview") << Qt::Key_1 << u"dashboard"_qs;
        QTest::newRow("simulator") << Qt::Key_2 << u"simulator"_qs;
        QTest::newRow("server") << Qt::Key_3 << u"server"_qs;
        QTest::newRow("voice") << Qt::Key_4 << u"voice"_qs;
        QTest::newRow("messages") << Qt::Key_5 << u"messages"_qs;
        QTest::newRow("settings") << Qt::Key_6 << u"settings"_qs;
    }
    void everyPageHasItsKeys()
    {
        QFETCH(Qt::Key, key);
        QFETCH(QString, section);
        if (section == QLatin1String("dashboard"))
            press(Qt::Key_6, Qt::ControlModifier);
        QVERIFY(!selected(section));
        press(key, Qt::ControlModifier);
        QVERIFY(selected(section));
        const QString tip = m_harness->item(u"section-"_qs + section)->property("tip").toString();
        QCOMPARE(tip, u"Ctrl+"_qs + QChar(key));
    }

    void theComposeLineGetsTheKeyboard()
    {
        press(Qt::Key_L, Qt::ControlModifier); // from another page
        QVERIFY(m_harness->item(u"composeField"_qs)->hasActiveFocus());
        QTest::keyClick(&m_harness->view, Qt::Key_Tab);
        QVERIFY(!m_harness->item(u"composeField"_qs)->hasActiveFocus());
        press(Qt::Key_L, Qt::ControlModifier); // on the page itself
        QVERIFY(m_harness->item(u"composeField"_qs)->hasActiveFocus());
    }

    void theLastSessionIsTheOneWhereSomethingHappenedLast()
    {
        press(Qt::Key_R, Qt::ControlModifier);
        QCOMPARE(m_harness->messages().activeChannel(), u"PRIVATE"_qs);
        m_harness->messages().addPrivateReceived(u"CCA1"_qs, u"one"_qs);
        m_harness->messages().addPrivateReceived(u"CSN2"_qs, u"two"_qs);
        m_harness->messages().addPrivateReceived(u"CCA1"_qs, u"three"_qs);
        press(Qt::Key_1, Qt::ControlModifier);
        press(Qt::Key_R, Qt::ControlModifier);
        QVERIFY(selected(u"messages"_qs));
        QCOMPARE(m_harness->messages().activeChannel(), u"CCA1"_qs);
        QVERIFY(m_harness->item(u"composeField"_qs)->hasActiveFocus());
    }

    void aHeldKeySwitchesOnce()
    {
        QVERIFY(m_harness->sounds().isOn());
        m_harness->hold(Qt::Key_M, Qt::ControlModifier);
        QVERIFY(!m_harness->sounds().isOn());
        m_harness->sounds().setOn(true);
        m_harness->hold(Qt::Key_F1);
        m_harness->settle();
        QVERIFY(m_harness->item(u"shortcutSheetClose"_qs)); // it doesn't close what it has opened
        m_harness->hold(Qt::Key_F1);
        TRY_VERIFY(!m_harness->item(u"shortcutSheetClose"_qs));
    }

    void theSheetGivesTheKeysBack()
    {
        press(Qt::Key_L, Qt::ControlModifier);
        press(Qt::Key_F1);
        TRY_VERIFY(m_harness->item(u"shortcutSheetClose"_qs));
        TRY_VERIFY(m_harness->item(u"shortcutSheetClose"_qs)->hasActiveFocus());
        press(Qt::Key_Escape);
        TRY_VERIFY(!m_harness->item(u"shortcutSheetClose"_qs));
        TRY_VERIFY(m_harness->item(u"composeField"_qs)->hasActiveFocus());
        m_harness->type(u"ok"_qs);
        QCOMPARE(m_harness->messages().draftMessage(), u"ok"_qs);
        m_harness->messages().setDraftMessage({});
    }

    void theLeaveDialogGivesTheKeysBack()
    {
        m_harness->leave().setOnline(u"CES2352"_qs);
        press(Qt::Key_L, Qt::ControlModifier);
        m_harness->leave().logOut();
        TRY_VERIFY(m_harness->item(u"leaveReject"_qs));
        TRY_VERIFY(m_harness->item(u"leaveReject"_qs)->hasActiveFocus());
        press(Qt::Key_Escape);
        TRY_VERIFY(!m_harness->item(u"leaveReject"_qs));
        TRY_VERIFY(m_harness->item(u"composeField"_qs)->hasActiveFocus());
    }

    void theNetworkTakesNoKeysFromASheet()
    {
        m_harness->messages().setNetworkConnected(false);
        press(Qt::Key_L, Qt::ControlModifier);
        press(Qt::Key_F1);
        TRY_VERIFY(m_harness->item(u"shortcutSheetClose"_qs));
        TRY_VERIFY(m_harness->item(u"shortcutSheetClose"_qs)->hasActiveFocus());
        m_harness->messages().setNetworkConnected(true);
        QVERIFY(m_harness->item(u"shortcutSheetClose"_qs)->hasActiveFocus());
        press(Qt::Key_Escape);
        TRY_VERIFY(m_harness->item(u"composeField"_qs)->hasActiveFocus()); // which can be used now
    }

    void theSoundsAreSwitched()
    {
        QVERIFY(m_harness->sounds().isOn());
        press(Qt::Key_M, Qt::ControlModifier);
        QVERIFY(!m_harness->sounds().isOn());
        press(Qt::Key_M, Qt::ControlModifier);
        QVERIFY(m_harness->sounds().isOn());
    }

    void oneSheetTellsThemAll_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::newRow("F1") << Qt::Key_F1;
        QTest::newRow("question mark") << Qt::Key_Question;
    }
    void oneSheetTellsThemAll()
    {
        QFETCH(Qt::Key, key);
        press(key);
        TRY_VERIFY(m_harness->item(u"shortcutSheetClose"_qs));
        TRY_VERIFY(m_harness->item(u"shortcutSheetClose"_qs)->hasActiveFocus());
        for (const char16_t *text : {u"Ctrl+6", u"Ctrl+L", u"Ctrl+R", u"F1", u"Esc", u"写消息"})
            QVERIFY(m_harness->itemWithText(QString::fromUtf16(text)));
        m_harness->settle();
        m_harness->grab(u"shortcuts"_qs);
        press(Qt::Key_2, Qt::ControlModifier); // the page behind stays
        QVERIFY(selected(u"dashboard"_qs));
        press(key); // the same key leaves it
        TRY_VERIFY(!m_harness->item(u"shortcutSheetClose"_qs));
    }

    void escapeLeavesTheSheet()
    {
        m_harness->click(m_harness->item(u"helpTool"_qs));
        TRY_VERIFY(m_harness->item(u"shortcutSheetClose"_qs));
        TRY_VERIFY(m_harness->item(u"shortcutSheetClose"_qs)->hasActiveFocus());
        press(Qt::Key_Escape);
        TRY_VERIFY(!m_harness->item(u"shortcutSheetClose"_qs));
    }

    void aQuestionMarkCanBeWritten()
    {
        press(Qt::Key_L, Qt::ControlModifier);
        m_harness->type(u"?"_qs);
        QVERIFY(!m_harness->item(u"shortcutSheetClose"_qs));
        QCOMPARE(m_harness->messages().draftMessage(), u"?"_qs);
    }

    void theModePageHasTheSheetToo()
    {
        m_harness->dashboard().setCurrentMode(u"NONE"_qs);
        press(Qt::Key_3, Qt::ControlModifier); // no page to open; nothing breaks
        press(Qt::Key_F1);
        TRY_VERIFY(m_harness->item(u"shortcutSheetClose"_qs));
    }

    void aKeyThatIsBeingCapturedOpensNothing()
    {
        m_harness->fillVoiceSettings();
        press(Qt::Key_6, Qt::ControlModifier);
        m_harness->voiceSettings().startPttListening();
        press(Qt::Key_F1);
        QVERIFY(!m_harness->item(u"shortcutSheetClose"_qs));
        m_harness->voiceSettings().stopPttListening();
        press(Qt::Key_F1);
        TRY_VERIFY(m_harness->item(u"shortcutSheetClose"_qs));
    }

private:
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(&m_harness->view, key, modifiers); }
    bool selected(const QString &section) const
    {
        return m_harness->item(u"section-"_qs + section)->property("selected").toBool();
    }

    std::unique_ptr<PageHarness> m_harness;
};

TARVO_TEST(ShortcutsTest)
#include "ShortcutsTest.moc"
