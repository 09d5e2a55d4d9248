#include "PageHarness.h"
#include "model/RadioMessageReceived.h"
#include "support/TestRegistry.h"

#include <QAccessible>
#include <QObject>
#include <QTest>

#include <memory>

using tarvo::test::PageHarness;

/// What a screen reader is told of the pages' own controls and drawings.
class AccessibilityTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_harness = std::make_unique<PageHarness>(QStringLiteral("XPLANE"), QSize(1280, 1300));
        m_harness->fillSimulator(QStringLiteral("XPLANE"));
    }

    void cleanup()
    {
        QCOMPARE(m_harness->complaints(), QStringList());
        m_harness.reset();
    }

    void controlsOfTheMessagesHaveNames_data()
    {
        QTest::addColumn<QString>("item");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QAccessible::Role>("role");
        QTest::newRow("compose line") << QStringLiteral("composeField") << QStringLiteral("发送无线电文本消息...")
                                      << QAccessible::EditableText;
        QTest::newRow("sender") << QStringLiteral("sender") << QStringLiteral("回复 CCA1") << QAccessible::Button;
        QTest::newRow("fold") << QStringLiteral("foldControl") << QStringLiteral("展开全文") << QAccessible::Button;
        QTest::newRow("newest") << QStringLiteral("newestButton") << QStringLiteral("回到最新 ↓")
                                << QAccessible::Button;
        QTest::newRow("list") << QStringLiteral("messagePane") << QStringLiteral("消息列表") << QAccessible::Client;
        QTest::newRow("session's close") << QStringLiteral("closeControl") << QStringLiteral("关闭 CSN3388")
                                         << QAccessible::Button;
        QTest::newRow("session with unread")
            << QStringLiteral("session-CSN3388") << QStringLiteral("CSN3388，2 条未读") << QAccessible::Button;
        QTest::newRow("channel") << QStringLiteral("channel-RADIO") << QStringLiteral("无线电") << QAccessible::Button;
    }

    void controlsOfTheMessagesHaveNames()
    {
        QFETCH(QString, item);
        m_harness->openSection(QStringLiteral("消息"));
        m_harness->messages().setNetworkConnected(true);
        for (int i = 0; i < 20; ++i)
            m_harness->messages().addRadioReceived({.from = QStringLiteral("CCA1"),
                                                    .message = QString(3000, u'W'),
                                                    .frequencies = {},
                                                    .direct = false,
                                                    .dualReceive = false});
        m_harness->messages().addPrivateReceived(QStringLiteral("CSN3388"), QStringLiteral("one"));
        m_harness->messages().addPrivateReceived(QStringLiteral("CSN3388"), QStringLiteral("two"));
        m_harness->settle();
        QTest::keyClick(&m_harness->view, Qt::Key_PageUp); // shows the way back
        m_harness->settle();
        QTEST(nameOf(item), "name");
        QTEST(reader(item)->role(), "role");
    }

    void lampsTellWhetherTheyAreLit()
    {
        m_harness->openSection(QStringLiteral("模拟器"));
        QVERIFY(reader(QStringLiteral("modeCButton")));
        QCOMPARE(nameOf(QStringLiteral("modeCButton")), QStringLiteral("Mode C"));
        QVERIFY(isLit(reader(QStringLiteral("modeCButton"))));
        QVERIFY(!isLit(reader(QStringLiteral("identButton"))));
        QCOMPARE(lamp(QStringLiteral("Beacon"))->role(), QAccessible::Indicator);
        QVERIFY(isLit(lamp(QStringLiteral("Beacon"))));
        QVERIFY(!isLit(lamp(QStringLiteral("Taxi"))));
    }

    void theInstrumentsAreSummedUp()
    {
        m_harness->openSection(QStringLiteral("模拟器"));
        const QString display = QStringLiteral("attitudeIndicator");
        const QString radar = QStringLiteral("trafficRadar");
        QCOMPARE(nameOf(display), QStringLiteral("飞行仪表：俯仰 7°，横滚 22°，航向 052，地速 268 节，海高 8243 英尺"));
        QCOMPARE(nameOf(radar), QStringLiteral("交通雷达：附近暂无交通目标"));
        tarvo::model::RemoteAircraft aircraft;
        aircraft.callsign = QStringLiteral("CES1");
        aircraft.visualState.latitude = 31.2434;
        aircraft.visualState.longitude = 121.8052;
        m_harness->simulator().setRemoteAircraft({aircraft});
        QCOMPARE(nameOf(radar), QStringLiteral("交通雷达：1 个目标，最近的在方位 360，6.0 海里：CES1"));
        m_harness->simulator().setSimulatorState(false, QStringLiteral("未连接"));
        QCOMPARE(nameOf(display), QStringLiteral("飞行仪表：无姿态数据"));
        QCOMPARE(reader(radar)->role(), QAccessible::Graphic);
    }

    void theSidebarTellsWhatIsUnread()
    {
        QCOMPARE(nameOf(QStringLiteral("section-messages")), QStringLiteral("消息"));
        for (int i = 0; i < 120; ++i)
            m_harness->messages().addServerMessage(QStringLiteral("text"));
        QCOMPARE(nameOf(QStringLiteral("section-messages")), QStringLiteral("消息，120 条未读"));
    }

private:
    QAccessibleInterface *reader(const QString &name)
    {
        return QAccessible::queryAccessibleInterface(m_harness->item(name));
    }

    QString nameOf(const QString &name)
    {
        QAccessibleInterface *told = reader(name);
        return told ? told->text(QAccessible::Name) : QString();
    }

    /// The lamp around this text.
    QAccessibleInterface *lamp(const QString &text)
    {
        return QAccessible::queryAccessibleInterface(m_harness->itemWithText(text)->parentItem());
    }

    static bool isLit(QAccessibleInterface *told) { return told->state().checkable && told->state().checked; }

    std::unique_ptr<PageHarness> m_harness;
};

TARVO_TEST(AccessibilityTest)
#include "AccessibilityTest.moc"
