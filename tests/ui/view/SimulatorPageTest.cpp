#include "SimulatorPageFixture.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QObject>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <cmath>

using tarvo::model::RemoteAircraft;
using tarvo::model::UserAircraftData;
using tarvo::test::notANumber;
using tarvo::test::ownAircraft;
using tarvo::test::remoteAircraft;
using tarvo::ui::LinkState;
using tarvo::ui::SimulatorPageViewModel;

/// The simulator page: its cards, readings and instruments.
class SimulatorPageTest : public QObject, protected tarvo::test::SimulatorPageFixture
{
    Q_OBJECT

private slots:
    void init() { open(); }

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
        const QStringList xplane{u"X-Plane 飞行状态"_qs,
                                 u"交通目标"_qs,
                                 u"X-Plane 无线电控制"_qs,
                                 u"灯光与发动机"_qs,
                                 u"会话状态"_qs,
                                 u"X-Plane 插件状态"_qs,
                                 u"插件状态"_qs,
                                 u"CSL 状态"_qs,
                                 u"X-Plane 版本"_qs,
                                 u"暂停"_qs,
                                 u"地面状态"_qs,
                                 u"起落架"_qs,
                                 u"航电"_qs,
                                 u"X-Plane 120105"_qs};
        const QStringList msfs{u"飞行姿态"_qs, u"MSFS 交通快照"_qs, u"无线电与应答机"_qs, u"机体与灯光"_qs,
                               u"发动机"_qs};
        QTest::newRow("X-Plane") << u"XPLANE"_qs << xplane << msfs;
        QTest::newRow("MSFS") << u"MSFS"_qs << msfs << xplane;
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
        for (const QString &text : {u"映射状态"_qs, u"已加载 1286 个模型"_qs})
            QVERIFY2(m_harness->itemWithText(text), qPrintable(text));
    }

    void noFigureStandsThreeTimes_data()
    {
        QTest::addColumn<QString>("figure");
        QTest::addColumn<int>("places");
        QTest::newRow("ground speed, on the tape and in the table") << u"268"_qs << 2;
        QTest::newRow("heading, likewise") << u"052"_qs << 2;
        QTest::newRow("altitude, likewise") << u"8,?243"_qs << 2;
        QTest::newRow("COM1, on its unit") << u"^(?!设置).*121\\.800"_qs << 1;
        QTest::newRow("COM2, on its unit") << u"^(?!设置).*124\\.550"_qs << 1;
    }

    void noFigureStandsThreeTimes()
    {
        QFETCH(QString, figure);
        m_harness->fillSimulator(u"XPLANE"_qs);
        m_harness->settle();
        const QRegularExpression pattern(figure);
        int places = 0;
        for (const QQuickItem *text : m_harness->texts())
            places += text->property("text").toString().contains(pattern) ? 1 : 0;
        QTEST(places, "places");
    }

    void aFigureIsSelectedAndStaysMeanwhile()
    {
        m_harness->fillSimulator(u"XPLANE"_qs);
        m_harness->settle();
        QQuickItem *figure = m_harness->itemWithText(u"8,243 ft"_qs);
        QVERIFY(figure);
        QTest::mouseMove(&m_harness->view, figure->mapToScene({figure->width() - 5, 8}).toPoint());
        QTest::mouseDClick(&m_harness->view, Qt::LeftButton, {},
                           figure->mapToScene({figure->width() - 30, figure->height() / 2}).toPoint());
        const QString part = figure->property("selectedText").toString();
        QCOMPARE(part, u"243"_qs);                           // a word of it
        model().setSimulatorState(false, LinkState::Absent); // "--" now
        QCOMPARE(figure->property("selectedText").toString(), part);
        QTest::keySequence(&m_harness->view, QKeySequence::Copy);
        QCOMPARE(QGuiApplication::clipboard()->text(), part);
    }

    void bothModesShowEveryReading_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::newRow("X-Plane") << u"XPLANE"_qs;
        QTest::newRow("MSFS") << u"MSFS"_qs;
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
                                      u"COM1",
                                      u"COM1 / COM2",
                                      u"+1790 fpm",
                                      u"已连接",
                                      u"2 台发动机 | 2 台运行中 | 0 台反推"})
            QVERIFY2(m_harness->itemWithText(QString::fromUtf16(value)), qPrintable(QString::fromUtf16(value)));
    }

    void withoutALinkTheReadingsAreDashes()
    {
        model().setSimulatorState(false, LinkState::Absent);
        QVERIFY(m_harness->itemWithText(u"无姿态数据"_qs));
        QVERIFY(!m_harness->itemWithText(u"8,243 ft"_qs));
        QVERIFY(m_harness->itemWithText(u"未检测到发动机"_qs));
    }

    void buttonsAsk()
    {
        QSignalSpy reconnect(&model(), &SimulatorPageViewModel::reconnectRequested);
        QSignalSpy ident(&model(), &SimulatorPageViewModel::transponderIdentRequested);
        QSignalSpy mode(&model(), &SimulatorPageViewModel::transponderModeToggleRequested);
        QSignalSpy com2(&model(), &SimulatorPageViewModel::setCom2FrequencyRequested);
        m_harness->click(item(u"reconnectButton"_qs));
        QCOMPARE(reconnect.count(), 1);
        m_harness->click(item(u"identButton"_qs));
        QCOMPARE(ident.count(), 1);
        m_harness->click(item(u"modeCButton"_qs));
        QCOMPARE(mode.count(), 1);
        m_harness->click(item(u"com2Field"_qs));
        m_harness->type(u"124.55"_qs);
        m_harness->click(item(u"com2Button"_qs));
        QCOMPARE(com2, (QList<QVariantList>{{u"124.550"_qs}}));
    }

    void theTransponderButtonsAreLitByTheSimulator()
    {
        QVERIFY(item(u"modeCButton"_qs)->property("lit").toBool());
        QVERIFY(!item(u"identButton"_qs)->property("lit").toBool());
        tarvo::model::RadioStackState radio;
        radio.squawkingIdent = true;
        model().setOwnAircraft({}, {}, radio, false);
        QVERIFY(!item(u"modeCButton"_qs)->property("lit").toBool());
        QVERIFY(item(u"identButton"_qs)->property("lit").toBool());
    }

    void anAttitudeIsBoundedOrAbsent_data()
    {
        QTest::addColumn<double>("pitch");
        QTest::addColumn<double>("bank");
        QTest::addColumn<double>("drawnPitch");
        QTest::addColumn<double>("drawnBank");
        QTest::addColumn<bool>("known");
        QTest::newRow("climbing turn") << 10.0 << 30.0 << 10.0 << 30.0 << true;
        QTest::newRow("beyond straight up") << 120.0 << 0.0 << 90.0 << 0.0 << true;
        QTest::newRow("pitch unknown") << notANumber << 30.0 << 0.0 << 0.0 << false;
        QTest::newRow("bank unknown") << 10.0 << -HUGE_VAL << 0.0 << 0.0 << false;
    }

    void anAttitudeIsBoundedOrAbsent()
    {
        QFETCH(double, pitch);
        QFETCH(double, bank);
        fly(pitch, bank);
        const QQuickItem *horizon = item(u"horizon"_qs);
        QTEST(horizon->property("pitch").toDouble(), "drawnPitch");
        QTEST(horizon->property("bank").toDouble(), "drawnBank");
        QTEST(m_harness->itemWithText(u"无姿态数据"_qs) == nullptr, "known");
    }

    void theHorizonFollowsTheAttitude_data()
    {
        QTest::addColumn<double>("pitch");
        QTest::addColumn<double>("bank");
        QTest::addColumn<QList<double>>("ground"); // its share of the upper, lower, left and right half
        QTest::newRow("level") << 0.0 << 0.0 << QList<double>{0, 1, 0.5, 0.5};
        QTest::newRow("nose up") << 20.0 << 0.0 << QList<double>{0, 0, 0, 0};
        QTest::newRow("nose down") << -20.0 << 0.0 << QList<double>{1, 1, 1, 1};
        QTest::newRow("right wing down") << 0.0 << 60.0 << QList<double>{0.3, 0.7, 0.1, 0.9};
        QTest::newRow("left wing down") << 0.0 << -60.0 << QList<double>{0.3, 0.7, 0.9, 0.1};
        QTest::newRow("inverted") << 0.0 << 180.0 << QList<double>{1, 0, 0.5, 0.5};
        QTest::newRow("nose up, right wing down") << 20.0 << 90.0 << QList<double>{0, 0, 0, 0};
    }

    void theHorizonFollowsTheAttitude()
    {
        QFETCH(double, pitch);
        QFETCH(double, bank);
        QFETCH(QList<double>, ground);
        fly(pitch, bank);
        const QImage picture = m_harness->grab(u"simulator-attitude"_qs);
        const QRectF halves[] = {
            {0.3, 0.25, 0.4, 0.25}, {0.3, 0.5, 0.4, 0.25}, {0.3, 0.25, 0.2, 0.5}, {0.5, 0.25, 0.2, 0.5}};
        for (int i = 0; i < 4; ++i) {
            const double share = groundShare(picture, halves[i]);
            QVERIFY2(std::abs(share - ground.at(i)) < 0.2, qPrintable(u"%1: %2"_qs.arg(i).arg(share)));
        }
    }

    void theWindowsShowTheFigures_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("speed");
        QTest::addColumn<QString>("altitude");
        QTest::addColumn<QString>("heading");
        const QString none = u"--"_qs;
        QTest::newRow("usual") << 268.4 << u"268"_qs << u"881"_qs << u"268°"_qs;
        QTest::newRow("rounded up") << 359.7 << u"360"_qs << u"1180"_qs << u"360°"_qs;
        QTest::newRow("small") << 5.0 << u"5"_qs << u"16"_qs << u"005°"_qs;
        QTest::newRow("a hair below nothing") << -0.1 << u"0"_qs << u"0"_qs << u"360°"_qs;
        QTest::newRow("unknown") << notANumber << none << none << none;
    }

    void theWindowsShowTheFigures()
    {
        QFETCH(double, value);
        UserAircraftData aircraft = ownAircraft(value);
        aircraft.groundSpeed = value;
        aircraft.altitudeMslM = value;
        model().setOwnAircraft(aircraft, {}, {}, false);
        QTEST(windowOf(u"speedTape"_qs), "speed");
        QTEST(windowOf(u"altitudeTape"_qs), "altitude");
        QTEST(item(u"headingWindow"_qs)->property("text").toString(), "heading");
    }

    void aPauseIsWrittenOnTheDisplay()
    {
        QVERIFY(m_harness->itemWithText(u"运行中"_qs));
        model().setOwnAircraft(ownAircraft(0), {}, {}, true);
        int shown = 0;
        const QList<QQuickItem *> texts = m_harness->texts();
        for (const QQuickItem *text : texts)
            shown += text->property("text").toString() == u"已暂停"_qs;
        QCOMPARE(shown, 2); // on the display and in the session's card
    }

    void foreignTextIsPlain()
    {
        const QString hostile = u"<b>甲</b><img src='file:///etc/passwd'>"_qs;
        model().setTrafficMappingStatus(hostile);
        model().setSimulatorState(true, LinkState::Connected);
        RemoteAircraft aircraft = remoteAircraft(hostile, 31.1, 121);
        aircraft.typeCode = hostile;
        model().setOwnAircraft(ownAircraft(0), {}, {}, false);
        model().setRemoteAircraft({aircraft});
        QVERIFY(m_harness->itemWithText(hostile));
        m_harness->settle();
        QCOMPARE(m_harness->textsOutOfBounds(), QStringList());
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
        QVERIFY(!m_harness->grab(u"simulator-absurd"_qs).isNull());
        const QList<QQuickItem *> texts = m_harness->texts();
        for (const QQuickItem *text : texts) {
            const QString shown = text->property("text").toString();
            QVERIFY2(!shown.contains(QLatin1String("nan"), Qt::CaseInsensitive) &&
                         !shown.contains(QLatin1String("inf"), Qt::CaseInsensitive) && shown.size() < 60,
                     qPrintable(shown));
        }
    }

    void aStillPictureIsNotDrawnAgain_data()
    {
        QTest::addColumn<int>("samples");
        QTest::newRow("nothing comes") << 0;
        QTest::newRow("equal samples come") << 20;
    }

    void aStillPictureIsNotDrawnAgain()
    {
        QFETCH(int, samples);
        model().setOwnAircraft(ownAircraft(10), {}, {}, false);
        m_harness->settle();
        QSignalSpy frames(&m_harness->view, &QQuickWindow::frameSwapped);
        while (frames.wait(200)) // what is still under way
            frames.clear();
        for (int i = 0; i < samples; ++i)
            model().setOwnAircraft(ownAircraft(10), {}, {}, false);
        QVERIFY(!frames.wait(200));
        model().setOwnAircraft(ownAircraft(11), {}, {}, false);
        TRY_VERIFY(frames.count() > 0);
    }

private:
    void fly(double pitch, double bank)
    {
        UserAircraftData aircraft = ownAircraft(90);
        aircraft.pitch = pitch;
        aircraft.bank = bank;
        model().setOwnAircraft(aircraft, {}, {}, false);
    }

    /// How much of a part of the horizon, in fractions of it, is drawn brown.
    double groundShare(const QImage &picture, QRectF part)
    {
        const QQuickItem *horizon = item(u"horizon"_qs);
        const double scale = picture.devicePixelRatio();
        const QRectF box =
            horizon->mapRectToScene(QRectF(part.x() * horizon->width(), part.y() * horizon->height(),
                                           part.width() * horizon->width(), part.height() * horizon->height()));
        const QImage cut = picture.copy(QRectF(box.topLeft() * scale, box.size() * scale).toRect());
        int brown = 0;
        for (int y = 0; y < cut.height(); ++y)
            for (int x = 0; x < cut.width(); ++x)
                brown += cut.pixelColor(x, y).red() > cut.pixelColor(x, y).blue() + 10;
        return double(brown) / (cut.width() * cut.height());
    }

    QString windowOf(const QString &tape)
    {
        const QList<QQuickItem *> windows = m_harness->items(u"tapeWindow"_qs);
        for (const QQuickItem *window : windows)
            if (item(tape)->isAncestorOf(window))
                return window->property("text").toString();
        return {};
    }
};

TARVO_TEST(SimulatorPageTest)
#include "SimulatorPageTest.moc"
