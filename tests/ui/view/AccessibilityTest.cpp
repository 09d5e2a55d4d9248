#include "PageHarness.h"
#include "model/RadioMessageReceived.h"
#include "support/TestRegistry.h"

#include <QAccessible>
#include <QObject>
#include <QTest>

#include <memory>
#include <private/qguiapplication_p.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>

using tarvo::test::PageHarness;
using tarvo::ui::LinkState;

/// What a screen reader is told of the pages' own controls and drawings.
class AccessibilityTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_harness = std::make_unique<PageHarness>(u"XPLANE"_qs, QSize(1280, 1300));
        m_harness->fillSimulator(u"XPLANE"_qs);
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
        QTest::newRow("compose line") << u"composeField"_qs << u"发送无线电文本消息..."_qs << QAccessible::EditableText;
        QTest::newRow("sender") << u"sender"_qs << u"回复 CCA1"_qs << QAccessible::Button;
        QTest::newRow("fold") << u"foldControl"_qs << u"展开全文"_qs << QAccessible::Button;
        QTest::newRow("newest") << u"newestButton"_qs << u"回到最新 ↓"_qs << QAccessible::Button;
        QTest::newRow("list") << u"messagePane"_qs << u"消息列表"_qs << QAccessible::Client;
        QTest::newRow("session's close") << u"closeControl"_qs << u"关闭 CSN3388"_qs << QAccessible::Button;
        QTest::newRow("session with unread") << u"session-CSN3388"_qs << u"CSN3388，2 条未读"_qs << QAccessible::Button;
        QTest::newRow("channel") << u"channel-RADIO"_qs << u"无线电"_qs << QAccessible::Button;
    }

    void controlsOfTheMessagesHaveNames()
    {
        QFETCH(QString, item);
        m_harness->openSection(u"消息"_qs);
        m_harness->messages().setNetworkConnected(true);
        for (int i = 0; i < 20; ++i)
            m_harness->messages().addRadioReceived({.from = u"CCA1"_qs,
                                                    .message = QString(3000, u'W'),
                                                    .frequencies = {},
                                                    .direct = false,
                                                    .dualReceive = false});
        m_harness->messages().addPrivateReceived(u"CSN3388"_qs, u"one"_qs);
        m_harness->messages().addPrivateReceived(u"CSN3388"_qs, u"two"_qs);
        m_harness->settle();
        QTest::keyClick(&m_harness->view, Qt::Key_PageUp); // shows the way back
        m_harness->settle();
        QTEST(nameOf(item), "name");
        QTEST(reader(item)->role(), "role");
    }

    void lampsTellWhetherTheyAreLit()
    {
        m_harness->openSection(u"模拟器"_qs);
        QVERIFY(reader(u"modeCButton"_qs));
        QCOMPARE(nameOf(u"modeCButton"_qs), u"Mode C"_qs);
        QVERIFY(isLit(reader(u"modeCButton"_qs)));
        QVERIFY(!isLit(reader(u"identButton"_qs)));
        QCOMPARE(lamp(u"Beacon"_qs)->role(), QAccessible::Indicator);
        QVERIFY(isLit(lamp(u"Beacon"_qs)));
        QVERIFY(!isLit(lamp(u"Taxi"_qs)));
    }

    void theInstrumentsAreSummedUp()
    {
        m_harness->openSection(u"模拟器"_qs);
        const QString display = u"attitudeIndicator"_qs;
        const QString radar = u"trafficRadar"_qs;
        QCOMPARE(nameOf(display), u"飞行仪表：俯仰 7°，横滚 22°，航向 052，地速 268 节，海高 8243 英尺"_qs);
        QCOMPARE(nameOf(radar), u"交通雷达：附近暂无交通目标"_qs);
        tarvo::model::RemoteAircraft aircraft;
        aircraft.callsign = u"CES1"_qs;
        aircraft.visualState.latitude = 31.2434;
        aircraft.visualState.longitude = 121.8052;
        m_harness->simulator().setRemoteAircraft({aircraft});
        QCOMPARE(nameOf(radar), u"交通雷达：1 个目标，最近的在方位 360，6.0 海里：CES1"_qs);
        m_harness->simulator().setSimulatorState(false, LinkState::Absent);
        QCOMPARE(nameOf(display), u"飞行仪表：无姿态数据"_qs);
        QCOMPARE(reader(radar)->role(), QAccessible::Graphic);
    }

    void theReaderHearsWhomTheKeysPick()
    {
        static QStringList heard;
        heard.clear();
        m_harness->fillTraffic(6);
        m_harness->openSection(u"模拟器"_qs);
        QVERIFY(m_harness->tabTo(u"trafficList"_qs));
        QPlatformAccessibility *desktop = QGuiApplicationPrivate::platformIntegration()->accessibility();
        desktop->setActive(true);
        const auto usual = QAccessible::installUpdateHandler([](QAccessibleEvent *event) {
            if (event->type() == QAccessible::Focus && event->accessibleInterface())
                heard += event->accessibleInterface()->text(QAccessible::Name);
        });
        QTest::keyClick(&m_harness->view, Qt::Key_Down);
        QTest::keyClick(&m_harness->view, Qt::Key_Down);
        QAccessible::installUpdateHandler(usual);
        desktop->setActive(false);
        QStringList expected;
        const QList<QQuickItem *> rows = m_harness->items(u"trafficRow"_qs);
        for (const QQuickItem *row : rows.first(2))
            expected += row->property("callsign").toString() + u' ' + row->property("type").toString();
        QCOMPARE(heard, expected);
        QVERIFY(QAccessible::queryAccessibleInterface(rows.at(1))->state().selected);
        QCOMPARE(QAccessible::queryAccessibleInterface(rows.at(1))->role(), QAccessible::ListItem);
    }

    void theSidebarTellsWhatIsUnread()
    {
        QCOMPARE(nameOf(u"section-messages"_qs), u"消息"_qs);
        for (int i = 0; i < 120; ++i)
            m_harness->messages().addServerMessage(u"text"_qs);
        QCOMPARE(nameOf(u"section-messages"_qs), u"消息，120 条未读"_qs);
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
