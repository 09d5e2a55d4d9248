#include "PageHarness.h"
#include "support/TestRegistry.h"

#include <QGuiApplication>
#include <QSignalSpy>
#include <QStyleHints>
#include <QTest>

#include <memory>

using tarvo::test::PageHarness;
using tarvo::ui::LinkState;

/// How often the pages are painted: each frame of a page costs more than all that the session does meanwhile.
class PageFramesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_flashTime = QGuiApplication::styleHints()->cursorFlashTime();
        QGuiApplication::styleHints()->setCursorFlashTime(0); // the page of the messages has the cursor
    }
    void cleanupTestCase() { QGuiApplication::styleHints()->setCursorFlashTime(m_flashTime); }

    void cleanup()
    {
        QCOMPARE(m_harness->complaints(), QStringList());
        m_harness.reset();
    }

    void whatIsToldAgainIsNotPaintedAgain_data()
    {
        QTest::addColumn<QString>("section");
        for (const QString &section : {u"总览"_qs, u"模拟器"_qs, u"服务器"_qs, u"语音服务"_qs, u"消息"_qs, u"设置"_qs})
            QTest::newRow(qPrintable(section)) << section;
    }
    void whatIsToldAgainIsNotPaintedAgain()
    {
        QFETCH(QString, section);
        open(section);
        QSignalSpy frames(&m_harness->view, &QQuickWindow::frameSwapped);
        tell();
        QVERIFY(!frames.wait(aWhileMs));
    }

    void aFlightThatGoesOnIsPaintedOnce_data()
    {
        QTest::addColumn<QString>("section");
        QTest::addColumn<bool>("isShown");
        QTest::newRow("overview") << u"总览"_qs << true;
        QTest::newRow("simulator") << u"模拟器"_qs << true;
        QTest::newRow("server") << u"服务器"_qs << false;
    }
    void aFlightThatGoesOnIsPaintedOnce()
    {
        QFETCH(QString, section);
        QFETCH(bool, isShown);
        open(section);
        fly(50);
        rest();
        QSignalSpy frames(&m_harness->view, &QQuickWindow::frameSwapped);
        fly(60);
        QCOMPARE(frames.wait(aWhileMs), isShown);
        QVERIFY(!frames.wait(aWhileMs)); // what moved has moved in one go
    }

private:
    static constexpr int aWhileMs = 60; ///< several frames' time
    static constexpr int manyFrames = 100;

    void open(const QString &section)
    {
        m_harness = std::make_unique<PageHarness>(u"XPLANE"_qs);
        tell();
        m_harness->openSection(section);
        QTest::mouseMove(&m_harness->view, {640, 2}); // where nothing is that a pointer lights up
        rest();
    }

    /// What slides or fades comes to its end.
    void rest()
    {
        QSignalSpy frames(&m_harness->view, &QQuickWindow::frameSwapped);
        while (frames.wait(aWhileMs) && frames.size() < manyFrames)
            ;
        QVERIFY(frames.size() < manyFrames);
    }

    void fly(double heading)
    {
        tarvo::model::UserAircraftData aircraft;
        aircraft.latitude = 31 + heading / 1000;
        aircraft.longitude = 121.8;
        aircraft.heading = heading;
        aircraft.bank = heading / 4;
        m_harness->dashboard().setFlightData(aircraft.latitude, aircraft.longitude, 100 * heading, heading, heading);
        m_harness->simulator().setOwnAircraft(aircraft, {}, {}, false);
    }

    void tell()
    {
        m_harness->fillAccount();
        m_harness->fillFlight();
        m_harness->fillSimulator(u"XPLANE"_qs);
        m_harness->fillTraffic(8);
        m_harness->simulator().setPluginValid(true);
        m_harness->status().setNetwork(true, LinkState::Connected);
        m_harness->server().setServerState(true, LinkState::Connected);
    }

    int m_flashTime = 0;
    std::unique_ptr<PageHarness> m_harness;
};

TARVO_TEST(PageFramesTest)
#include "PageFramesTest.moc"
