#include "PageHarness.h"
#include "support/TestRegistry.h"

#include <QInputMethodEvent>
#include <QObject>
#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <limits>
#include <memory>

using tarvo::model::RemoteAircraft;
using tarvo::model::UserAircraftData;
using tarvo::test::PageHarness;
using tarvo::ui::viewmodel::SimulatorPageViewModel;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

RemoteAircraft remote(const QString &callsign, double latitude, double longitude, double altitudeMslM = 1000)
{
    RemoteAircraft aircraft;
    aircraft.callsign = callsign;
    aircraft.visualState.latitude = latitude;
    aircraft.visualState.longitude = longitude;
    aircraft.visualState.altitudeMslM = altitudeMslM;
    return aircraft;
}

UserAircraftData own(double heading)
{
    UserAircraftData aircraft;
    aircraft.latitude = 31;
    aircraft.longitude = 121;
    aircraft.altitudeMslM = 1000;
    aircraft.heading = heading;
    return aircraft;
}

} // namespace

/// The simulator page: its cards, the drawings, and the entries under real keys and clicks.
class SimulatorPageTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_harness = std::make_unique<PageHarness>(PageHarness::Backends::Present, QSize(1280, 1300));
        m_harness->fillSimulator(QStringLiteral("XPLANE"));
        m_harness->openSection(QStringLiteral("模拟器"));
    }

    void cleanup()
    {
        QCOMPARE(m_harness->complaints(), QStringList());
        m_harness.reset();
    }

    void theModeChoosesTheCards_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QStringList>("shown");
        QTest::addColumn<QStringList>("hidden");
        const QStringList xplane{
            QStringLiteral("X-Plane 飞行状态"), QStringLiteral("交通目标"), QStringLiteral("X-Plane 无线电控制"),
            QStringLiteral("灯光与发动机"),     QStringLiteral("会话状态"), QStringLiteral("X-Plane 插件状态"),
            QStringLiteral("插件状态"),         QStringLiteral("CSL 状态"), QStringLiteral("映射状态"),
            QStringLiteral("X-Plane 版本"),     QStringLiteral("暂停"),     QStringLiteral("地面状态"),
            QStringLiteral("起落架"),           QStringLiteral("航电"),     QStringLiteral("X-Plane 120105")};
        const QStringList msfs{QStringLiteral("飞行姿态"), QStringLiteral("MSFS 交通快照"),
                               QStringLiteral("无线电与应答机"), QStringLiteral("机体与灯光"),
                               QStringLiteral("发动机")};
        QTest::newRow("X-Plane") << QStringLiteral("XPLANE") << xplane << msfs;
        QTest::newRow("MSFS") << QStringLiteral("MSFS") << msfs << xplane;
    }

    void theModeChoosesTheCards()
    {
        QFETCH(QString, mode);
        QFETCH(QStringList, shown);
        QFETCH(QStringList, hidden);
        m_harness->fillSimulator(mode);
        for (const QString &text : shown)
            QVERIFY2(m_harness->itemWithText(text), qPrintable(text));
        for (const QString &text : hidden)
            QVERIFY2(!m_harness->itemWithText(text), qPrintable(text));
    }

    void bothModesShowEveryReading_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::newRow("X-Plane") << QStringLiteral("XPLANE");
        QTest::newRow("MSFS") << QStringLiteral("MSFS");
    }

    void bothModesShowEveryReading()
    {
        QFETCH(QString, mode);
        m_harness->fillSimulator(mode);
        for (const char16_t *label :
             {u"海高", u"离地",      u"地速",      u"航向",     u"纬度",     u"经度",     u"俯仰",
              u"横滚", u"压高",      u"前轮",      u"纬向速度", u"经向速度", u"垂直速度", u"航向变化",
              u"襟翼", u"减速板",    u"Beacon",    u"Landing",  u"Taxi",     u"Nav",      u"Strobe",
              u"COM1", u"COM2",      u"监听",      u"发射",     u"接收",     u"应答机",   u"Mode C / Ident",
              u"反推", u"写入 COM1", u"写入 COM2", u"ENG1",     u"ENG2"})
            QVERIFY2(m_harness->itemWithText(QString::fromUtf16(label)), qPrintable(QString::fromUtf16(label)));
        for (const char16_t *value : {u"8,243 ft",
                                      u"8,229 ft",
                                      u"8,251 ft",
                                      u"268 kt",
                                      u"052°",
                                      u"N31°08.6′",
                                      u"E121°48.3′",
                                      u"7.4°",
                                      u"21.5°",
                                      u"84.2 m/s",
                                      u"109.7 m/s",
                                      u"9.1 m/s",
                                      u"1.5°/s",
                                      u"25%",
                                      u"预位",
                                      u"121.800",
                                      u"124.550",
                                      u"2145",
                                      u"COM1 121.800",
                                      u"COM1 121.800 / COM2 124.550",
                                      u"+1790 fpm",
                                      u"已连接",
                                      u"2 台发动机 | 2 台运行中 | 0 台反推"})
            QVERIFY2(m_harness->itemWithText(QString::fromUtf16(value)), qPrintable(QString::fromUtf16(value)));
    }

    void withoutALinkTheReadingsAreDashes()
    {
        model().setSimulatorState(false, QStringLiteral("未连接"));
        QVERIFY(m_harness->itemWithText(QStringLiteral("无姿态数据")));
        QVERIFY(!m_harness->itemWithText(QStringLiteral("8,243 ft")));
        QVERIFY(m_harness->itemWithText(QStringLiteral("暂无运动数据")));
        QVERIFY(m_harness->itemWithText(QStringLiteral("未检测到发动机")));
    }

    void entries_data()
    {
        QTest::addColumn<QString>("entry");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("sent");
        QTest::addColumn<QString>("hint");
        const QString com = QStringLiteral("com1");
        const QString form = QStringLiteral("格式如 121.800");
        const QString range = QStringLiteral("范围 118.000 至 136.990");
        const QString code = QStringLiteral("transponder");
        QTest::newRow("COM, nothing") << com << QString() << QString() << QString();
        QTest::newRow("COM, blanks") << com << QStringLiteral("  ") << QString() << QString();
        QTest::newRow("COM, whole") << com << QStringLiteral("121.800") << QStringLiteral("121.800") << QString();
        QTest::newRow("COM, blanks around")
            << com << QStringLiteral(" 121.800 ") << QStringLiteral("121.800") << QString();
        QTest::newRow("COM, one decimal") << com << QStringLiteral("121.8") << QStringLiteral("121.800") << QString();
        QTest::newRow("COM, 8.33 channel")
            << com << QStringLiteral("118.005") << QStringLiteral("118.005") << QString();
        QTest::newRow("COM, lowest") << com << QStringLiteral("118.000") << QStringLiteral("118.000") << QString();
        QTest::newRow("COM, highest") << com << QStringLiteral("136.990") << QStringLiteral("136.990") << QString();
        QTest::newRow("COM, below") << com << QStringLiteral("117.995") << QString() << range;
        QTest::newRow("COM, above") << com << QStringLiteral("136.995") << QString() << range;
        QTest::newRow("COM, between the channels")
            << com << QStringLiteral("121.803") << QString() << QStringLiteral("末位只能是 0 或 5");
        QTest::newRow("COM, not yet whole") << com << QStringLiteral("121.") << QString() << form;
        QTest::newRow("COM, no point") << com << QStringLiteral("121800") << QString() << form;
        QTest::newRow("COM, four decimals") << com << QStringLiteral("121.8000") << QString() << form;
        QTest::newRow("COM, letters") << com << QStringLiteral("12l.800") << QString() << form;
        QTest::newRow("COM, minus") << com << QStringLiteral("-121.800") << QString() << form;
        QTest::newRow("COM, exponent") << com << QStringLiteral("1.2e2") << QString() << form;
        QTest::newRow("COM2's own example")
            << QStringLiteral("com2") << QStringLiteral("x") << QString() << QStringLiteral("格式如 124.550");
        QTest::newRow("code, whole") << code << QStringLiteral("7700") << QStringLiteral("7700") << QString();
        QTest::newRow("code, one digit") << code << QStringLiteral("0") << QStringLiteral("0") << QString();
        QTest::newRow("code, an eight") << code << QStringLiteral("8000") << QString()
                                        << QStringLiteral("只能用数字 0 至 7");
        QTest::newRow("code, five digits")
            << code << QStringLiteral("12345") << QString() << QStringLiteral("最多四位数字");
        QTest::newRow("code, a letter") << code << QStringLiteral("77o0") << QString()
                                        << QStringLiteral("只能用数字 0 至 7");
    }

    void entries()
    {
        QFETCH(QString, entry);
        QFETCH(QString, typed);
        QFETCH(QString, sent);
        QSignalSpy com1(&model(), &SimulatorPageViewModel::setCom1FrequencyRequested);
        QSignalSpy code(&model(), &SimulatorPageViewModel::setTransponderCodeRequested);
        QQuickItem *field = item(entry + QStringLiteral("Field"));
        field->forceActiveFocus();
        m_harness->type(typed);
        QTEST(item(entry + QStringLiteral("Hint"))->property("text").toString(), "hint");
        QCOMPARE(item(entry + QStringLiteral("Button"))->isEnabled(), !sent.isEmpty());
        QTest::keyClick(&m_harness->view, Qt::Key_Return);
        const QList<QVariantList> expected =
            sent.isEmpty() ? QList<QVariantList>() : QList<QVariantList>{{QVariant(sent)}};
        QCOMPARE(entry == QLatin1String("com1") ? com1 : code, expected);
        QCOMPARE(field->property("text").toString(), sent.isEmpty() ? typed : QString());
    }

    void fullWidthTextIsRead()
    {
        QSignalSpy com1(&model(), &SimulatorPageViewModel::setCom1FrequencyRequested);
        item(QStringLiteral("com1Field"))->setProperty("text", QStringLiteral("１２１。８"));
        QVERIFY(item(QStringLiteral("com1Button"))->isEnabled());
        m_harness->click(item(QStringLiteral("com1Button")));
        QCOMPARE(com1, (QList<QVariantList>{{QStringLiteral("121.800")}}));
    }

    void aComposedTextCountsAsTyped()
    {
        QQuickItem *field = item(QStringLiteral("com2Field"));
        field->forceActiveFocus();
        m_harness->type(QStringLiteral("124"));
        QVERIFY(!item(QStringLiteral("com2Button"))->isEnabled());
        QInputMethodEvent composing(QStringLiteral(".55"), {});
        QCoreApplication::sendEvent(field, &composing);
        QVERIFY(item(QStringLiteral("com2Button"))->isEnabled());
        m_harness->grab(QStringLiteral("simulator-entry"));
    }

    void buttonsAsk()
    {
        QSignalSpy reconnect(&model(), &SimulatorPageViewModel::reconnectRequested);
        QSignalSpy ident(&model(), &SimulatorPageViewModel::transponderIdentRequested);
        QSignalSpy mode(&model(), &SimulatorPageViewModel::transponderModeToggleRequested);
        QSignalSpy com2(&model(), &SimulatorPageViewModel::setCom2FrequencyRequested);
        m_harness->click(item(QStringLiteral("reconnectButton")));
        QCOMPARE(reconnect.count(), 1);
        m_harness->click(item(QStringLiteral("identButton")));
        QCOMPARE(ident.count(), 1);
        m_harness->click(item(QStringLiteral("modeCButton")));
        QCOMPARE(mode.count(), 1);
        m_harness->click(item(QStringLiteral("com2Field")));
        m_harness->type(QStringLiteral("124.55"));
        m_harness->click(item(QStringLiteral("com2Button")));
        QCOMPARE(com2, (QList<QVariantList>{{QStringLiteral("124.550")}}));
    }

    void theTransponderButtonsAreLitByTheSimulator()
    {
        QVERIFY(item(QStringLiteral("modeCButton"))->property("lit").toBool());
        QVERIFY(!item(QStringLiteral("identButton"))->property("lit").toBool());
        tarvo::model::RadioStackState radio;
        radio.squawkingIdent = true;
        model().setOwnAircraft({}, {}, radio, false);
        QVERIFY(!item(QStringLiteral("modeCButton"))->property("lit").toBool());
        QVERIFY(item(QStringLiteral("identButton"))->property("lit").toBool());
    }

    void theHorizonFollowsTheAttitude_data()
    {
        QTest::addColumn<double>("pitch");
        QTest::addColumn<double>("bank");
        QTest::addColumn<double>("drawnPitch");
        QTest::addColumn<double>("drawnBank");
        QTest::addColumn<bool>("known");
        QTest::newRow("climbing turn") << 10.0 << 30.0 << 10.0 << 30.0 << true;
        QTest::newRow("inverted") << -5.0 << 180.0 << -5.0 << 180.0 << true;
        QTest::newRow("beyond straight up") << 120.0 << 0.0 << 90.0 << 0.0 << true;
        QTest::newRow("pitch unknown") << notANumber << 30.0 << 0.0 << 0.0 << false;
        QTest::newRow("bank unknown") << 10.0 << -HUGE_VAL << 0.0 << 0.0 << false;
    }

    void theHorizonFollowsTheAttitude()
    {
        QFETCH(double, pitch);
        QFETCH(double, bank);
        UserAircraftData aircraft = own(90);
        aircraft.pitch = pitch;
        aircraft.bank = bank;
        model().setOwnAircraft(aircraft, {}, {}, false);
        const QQuickItem *horizon = item(QStringLiteral("horizon"));
        QTEST(horizon->property("pitch").toDouble(), "drawnPitch");
        QTEST(horizon->property("bank").toDouble(), "drawnBank");
        QTEST(m_harness->itemWithText(QStringLiteral("无姿态数据")) == nullptr, "known");
    }

    void aPauseIsWrittenOnTheDisplay()
    {
        QVERIFY(m_harness->itemWithText(QStringLiteral("运行中")));
        model().setOwnAircraft(own(0), {}, {}, true);
        int shown = 0;
        const QList<QQuickItem *> texts = m_harness->texts();
        for (const QQuickItem *text : texts)
            shown += text->property("text").toString() == QStringLiteral("已暂停");
        QCOMPARE(shown, 2); // on the display and in the session's card
    }

    void contactsStandWhereTheyAre_data()
    {
        QTest::addColumn<double>("heading");
        QTest::addColumn<double>("latitude");
        QTest::addColumn<double>("longitude");
        QTest::addColumn<QPointF>("direction"); // on the screen
        QTest::newRow("ahead, flying north") << 0.0 << 31.1 << 121.0 << QPointF(0, -1);
        QTest::newRow("right, flying north") << 0.0 << 31.0 << 121.1 << QPointF(1, 0);
        QTest::newRow("behind, flying north") << 0.0 << 30.9 << 121.0 << QPointF(0, 1);
        QTest::newRow("left, flying east") << 90.0 << 31.1 << 121.0 << QPointF(-1, 0);
        QTest::newRow("ahead, flying east") << 90.0 << 31.0 << 121.1 << QPointF(0, -1);
        QTest::newRow("heading unknown is north up") << notANumber << 31.1 << 121.0 << QPointF(0, -1);
        QTest::newRow("heading beyond a turn") << 450.0 << 31.1 << 121.0 << QPointF(-1, 0);
    }

    void contactsStandWhereTheyAre()
    {
        QFETCH(double, heading);
        QFETCH(double, latitude);
        QFETCH(double, longitude);
        QFETCH(QPointF, direction);
        model().setOwnAircraft(own(heading), {}, {}, false);
        model().setRemoteAircraft({remote(QStringLiteral("CES1"), latitude, longitude)});
        const QQuickItem *contact = item(QStringLiteral("radarContact"));
        QVERIFY(contact);
        const QPointF seen = contact->position() / std::hypot(contact->x(), contact->y());
        QVERIFY2(std::hypot(seen.x() - direction.x(), seen.y() - direction.y()) < 0.01,
                 qPrintable(QStringLiteral("%1 %2").arg(seen.x()).arg(seen.y())));
    }

    void theRangeFollowsTheTraffic_data()
    {
        QTest::addColumn<double>("distanceNm");
        QTest::addColumn<QString>("range");
        QTest::newRow("close") << 1.5 << QStringLiteral("量程 2 NM");
        QTest::newRow("near") << 7.0 << QStringLiteral("量程 10 NM");
        QTest::newRow("far") << 55.0 << QStringLiteral("量程 80 NM");
        QTest::newRow("beyond all rings") << 900.0 << QStringLiteral("量程 320 NM");
    }

    void theRangeFollowsTheTraffic()
    {
        QFETCH(double, distanceNm);
        QFETCH(QString, range);
        model().setOwnAircraft(own(0), {}, {}, false);
        model().setRemoteAircraft({remote(QStringLiteral("CES1"), 31 + distanceNm / 60, 121)});
        QVERIFY(m_harness->itemWithText(range));
        QVERIFY(item(QStringLiteral("radarContact")));
        QVERIFY(m_harness->itemWithText(QStringLiteral("附近 1 个交通目标")));
    }

    void heightsAreInHundredsOfFeet_data()
    {
        QTest::addColumn<double>("altitudeMslM");
        QTest::addColumn<QString>("symbol");
        QTest::addColumn<QString>("row");
        QTest::newRow("above") << 1365.76 << QStringLiteral("+12") << QStringLiteral("+1200 ft");
        QTest::newRow("below") << 695.2 << QStringLiteral("−10") << QStringLiteral("-1000 ft");
        QTest::newRow("level") << 1000.0 << QStringLiteral("00") << QStringLiteral("0 ft");
        QTest::newRow("a hair below") << 999.0 << QStringLiteral("00") << QStringLiteral("0 ft");
    }

    void heightsAreInHundredsOfFeet()
    {
        QFETCH(double, altitudeMslM);
        QFETCH(QString, symbol);
        QFETCH(QString, row);
        model().setOwnAircraft(own(0), {}, {}, false);
        model().setRemoteAircraft({remote(QStringLiteral("CES1"), 31.1, 121, altitudeMslM)});
        QVERIFY(m_harness->itemWithText(symbol));
        QVERIFY(m_harness->itemWithText(row));
        QVERIFY(m_harness->itemWithText(QStringLiteral("6.0 NM")));
    }

    void theListGrowsAndShrinks()
    {
        QQuickItem *list = item(QStringLiteral("trafficList"));
        QCOMPARE(list->property("count").toInt(), 0);
        m_harness->fillTraffic(300);
        QCOMPARE(list->property("count").toInt(), 200);
        model().setRemoteAircraft({remote(QStringLiteral("CES1"), 31.1, 121)});
        QCOMPARE(list->property("count").toInt(), 1);
        model().setRemoteAircraft({});
        QVERIFY(m_harness->itemWithText(QStringLiteral("附近暂无交通目标")));
        QVERIFY(!item(QStringLiteral("radarContact")));
    }

    void aSnapshotWithoutAnOwnPositionShowsItsLabels()
    {
        model().setMode(QStringLiteral("MSFS"));
        model().setTrafficContacts({QVariantMap{{QStringLiteral("label"), QStringLiteral("OBJ-7")}}, QVariant(3)});
        QVERIFY(m_harness->itemWithText(QStringLiteral("OBJ-7")));
        QCOMPARE(item(QStringLiteral("trafficList"))->property("count").toInt(), 2);
    }

    void foreignTextIsPlain()
    {
        const QString hostile = QStringLiteral("<b>甲</b><img src='file:///etc/passwd'>");
        model().setTrafficMappingStatus(hostile);
        model().setSimulatorState(true, hostile);
        RemoteAircraft aircraft = remote(hostile, 31.1, 121);
        aircraft.typeCode = hostile;
        model().setOwnAircraft(own(0), {}, {}, false);
        model().setRemoteAircraft({aircraft});
        QVERIFY(m_harness->itemWithText(hostile));
        const QList<QQuickItem *> texts = m_harness->texts();
        for (const QQuickItem *text : texts)
            if (!text->inherits("QQuickPlaceholderText")) // hints are the program's own
                QCOMPARE(text->property("textFormat").toInt(), int(Qt::PlainText));
    }

    void absurdNumbersAreDrawnWithoutComplaint_data()
    {
        QTest::addColumn<double>("number");
        QTest::newRow("not a number") << notANumber;
        QTest::newRow("infinite") << HUGE_VAL;
        QTest::newRow("minus infinite") << -HUGE_VAL;
        QTest::newRow("huge") << 1e300;
        QTest::newRow("deep below") << -1e300;
    }

    void absurdNumbersAreDrawnWithoutComplaint()
    {
        QFETCH(double, number);
        const UserAircraftData aircraft{number, number, number, number, number, number, number, number, number,
                                        number, number, number, number, number, number, number, number, number};
        model().setOwnAircraft(aircraft, {}, {}, false);
        m_harness->fillTraffic(3);
        QVERIFY(!m_harness->grab(QStringLiteral("simulator-absurd")).isNull());
        const QList<QQuickItem *> texts = m_harness->texts();
        for (const QQuickItem *text : texts) {
            const QString shown = text->property("text").toString();
            QVERIFY2(!shown.contains(QLatin1String("nan"), Qt::CaseInsensitive) &&
                         !shown.contains(QLatin1String("inf"), Qt::CaseInsensitive) && shown.size() < 60,
                     qPrintable(shown));
        }
    }

    void aStillPictureIsNotDrawnAgain()
    {
        QSignalSpy frames(&m_harness->view, &QQuickWindow::frameSwapped);
        model().setOwnAircraft(own(10), {}, {}, false);
        QTRY_VERIFY(frames.count() > 0);
        QCoreApplication::processEvents();
        frames.clear();
        for (int i = 0; i < 20; ++i) {
            model().setOwnAircraft(own(10), {}, {}, false);
            QCoreApplication::processEvents();
        }
        QCOMPARE(frames.count(), 0);
        model().setOwnAircraft(own(11), {}, {}, false);
        QTRY_VERIFY(frames.count() > 0);
    }

private:
    SimulatorPageViewModel &model() { return m_harness->simulator(); }
    QQuickItem *item(const QString &name) { return m_harness->item(name); }

    std::unique_ptr<PageHarness> m_harness;
};

TARVO_TEST(SimulatorPageTest)
#include "SimulatorPageTest.moc"
