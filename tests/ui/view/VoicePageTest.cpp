#include "Contrast.h"
#include "PageHarness.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QGuiApplication>
#include <QObject>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>

#include <memory>

using tarvo::test::PageHarness;
using tarvo::voice::ConnectionState;

/// The voice page and the small window under real clicks.
class VoicePageTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_harness = std::make_unique<PageHarness>(u"XPLANE"_qs);
        m_harness->openSection(u"语音服务"_qs);
    }

    void cleanup()
    {
        QCOMPARE(m_harness->complaints(), QStringList());
        m_harness.reset();
    }

    void theButtonGoesWhileConnected()
    {
        QVERIFY(item("voiceConnectButton"));
        enter(ConnectionState::Connecting);
        QVERIFY(item("voiceConnectButton"));
        enter(ConnectionState::Connected);
        QVERIFY(!item("voiceConnectButton"));
        QVERIFY(m_harness->itemWithText(u"已连接"_qs));
        enter(ConnectionState::Ready);
        QVERIFY(m_harness->itemWithText(u"就绪"_qs));
    }

    void testsAreForAFreeLine()
    {
        QVERIFY(item("micTestButton")->isEnabled());
        QVERIFY(!item("testNote"));
        enter(ConnectionState::Connecting);
        QVERIFY(!item("micTestButton")->isEnabled());
        QVERIFY(!item("conflictTestButton")->isEnabled());
        QVERIFY(m_harness->itemWithText(u"语音服务连接中，无法测试"_qs));
    }

    void theTestsAreToggles_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("running");
        QTest::newRow("microphone") << u"micTestButton"_qs << u"停止麦克风测试"_qs;
        QTest::newRow("conflict") << u"conflictTestButton"_qs << u"停止冲突音测试"_qs;
    }

    void theTestsAreToggles()
    {
        QFETCH(QString, button);
        QFETCH(QString, running);
        m_harness->click(m_harness->item(button));
        QVERIFY(m_harness->itemWithText(running));
        QCOMPARE(m_harness->voice().micTesting() || m_harness->voice().conflictTesting(), true);
        m_harness->click(m_harness->item(button));
        QVERIFY(!m_harness->itemWithText(running));
        QCOMPARE(m_harness->voice().micTesting() || m_harness->voice().conflictTesting(), false);
    }

    void whoSpokeStandsThere()
    {
        m_harness->fillVoice();
        m_harness->settle();
        QVERIFY(m_harness->itemWithText(u"ZBAA_ATIS"_qs));
        QVERIFY(m_harness->itemWithText(u"127.600"_qs));
        QVERIFY(m_harness->itemWithText(u"118.5 MHz / 121.5 MHz"_qs));
        QCOMPARE(m_harness->items(u"speechBar"_qs).size(), 3);
    }

    void theSmallWindowLeavesTheKeyboardAlone()
    {
        QWindow *small = openSmallWindow();
        QVERIFY(small);
        QCOMPARE(small->size(), QSize(280, 150));
        const Qt::WindowFlags flags = small->flags();
        for (const Qt::WindowType flag :
             {Qt::FramelessWindowHint, Qt::WindowStaysOnTopHint, Qt::WindowDoesNotAcceptFocus})
            QVERIFY(flags.testFlag(flag));
        QCOMPARE(flags & Qt::WindowType_Mask, Qt::Tool);
        QVERIFY(!small->transientParent()); // else it is minimised with the main window
    }

    void theSmallWindowShowsItsTextsWhole_data()
    {
        QTest::addColumn<bool>("connected");
        QTest::newRow("in a session") << true;
        QTest::newRow("without one") << false;
    }
    void theSmallWindowShowsItsTextsWhole()
    {
        QFETCH(bool, connected);
        m_harness->fillSimulator(u"XPLANE"_qs);
        if (connected)
            m_harness->fillVoice();
        auto *small = qobject_cast<QQuickWindow *>(openSmallWindow());
        QVERIFY(small);
        const QImage picture = tarvo::test::keep(small->grabWindow(), u"voice-mini-%1"_qs.arg(connected));
        const QList<QQuickItem *> texts = PageHarness::textsOf(*small);
        QVERIFY(texts.size() >= 8);
        for (const QQuickItem *text : texts)
            QVERIFY2(text->property("contentWidth").toReal() <= text->width() + 1,
                     qPrintable(text->property("text").toString()));
        QCOMPARE(tarvo::test::paleTexts(texts, picture, {}), QStringList());
    }

    void itStaysWhenThePageGoes()
    {
        QVERIFY(openSmallWindow());
        m_harness->openSection(u"总览"_qs);
        QVERIFY(smallWindow());
        m_harness->voice().setMiniMode(false);
        TRY_VERIFY(!smallWindow());
    }

    void itsButtonTalksWhileItIsHeld()
    {
        enter(ConnectionState::Ready);
        QWindow *small = openSmallWindow();
        QVERIFY(small);
        const QPoint button(140, 120);
        QTest::mousePress(small, Qt::LeftButton, {}, button);
        QVERIFY(m_harness->voice().pttActive());
        QTest::mouseMove(small, button + QPoint(60, 0)); // a shaking hand drags nothing
        QVERIFY(m_harness->voice().pttActive());
        QTest::mouseRelease(small, Qt::LeftButton, {}, button);
        QVERIFY(!m_harness->voice().pttActive());
    }

    void itsButtonIsDeadWithoutASession()
    {
        QWindow *small = openSmallWindow();
        QVERIFY(small);
        QSignalSpy talked(&m_harness->voice(), &tarvo::ui::VoiceServiceViewModel::pttActiveChanged);
        QTest::mouseClick(small, Qt::LeftButton, {}, {140, 120});
        QCOMPARE(talked.size(), 0);
    }

    void itsCrossClosesIt()
    {
        QWindow *small = openSmallWindow();
        QVERIFY(small);
        QTest::mouseClick(small, Qt::LeftButton, {}, {255, 25});
        TRY_VERIFY(!smallWindow());
        QVERIFY(!m_harness->voice().miniMode());
    }

private:
    QQuickItem *item(const char *name) const { return m_harness->item(QString::fromLatin1(name)); }

    void enter(ConnectionState state)
    {
        emit m_harness->voiceClient().connectionStateChanged(state);
        m_harness->settle();
    }

    QWindow *openSmallWindow()
    {
        m_harness->click(item("voiceMiniButton"));
        QWindow *small = smallWindow();
        if (!small || !QTest::qWaitForWindowExposed(small))
            return nullptr;
        return small;
    }

    static QWindow *smallWindow()
    {
        for (QWindow *window : QGuiApplication::topLevelWindows()) {
            if (window->objectName() == QLatin1String("voiceMiniWindow") && window->isVisible())
                return window;
        }
        return nullptr;
    }

    std::unique_ptr<PageHarness> m_harness;
};

TARVO_TEST(VoicePageTest)
#include "VoicePageTest.moc"
