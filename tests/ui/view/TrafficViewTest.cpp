#include "SimulatorPageFixture.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QObject>
#include <QPointer>
#include <QTest>
#include <QWheelEvent>

#include <cmath>
#include <numbers>

using tarvo::test::notANumber;
using tarvo::test::ownAircraft;
using tarvo::test::remoteAircraft;

/// The traffic, as a plot and as a list.
class TrafficViewTest : public QObject, protected tarvo::test::SimulatorPageFixture
{
    Q_OBJECT

private slots:
    void init() { open(); }

    void cleanup()
    {
        QCOMPARE(m_harness->complaints(), QStringList());
        m_harness.reset();
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
        model().setOwnAircraft(ownAircraft(heading), {}, {}, false);
        model().setRemoteAircraft({remoteAircraft(u"CES1"_qs, latitude, longitude)});
        const QQuickItem *contact = item(u"radarContact"_qs);
        QVERIFY(contact);
        const QPointF seen = contact->position() / std::hypot(contact->x(), contact->y());
        QVERIFY2(std::hypot(seen.x() - direction.x(), seen.y() - direction.y()) < 0.01,
                 qPrintable(u"%1 %2"_qs.arg(seen.x()).arg(seen.y())));
    }

    void everySymbolIsOverTheRings()
    {
        model().setOwnAircraft(ownAircraft(0), {}, {}, false);
        model().setRemoteAircraft({remoteAircraft(u"CES1"_qs, 31.03, 121), remoteAircraft(u"CES2"_qs, 31, 121.1),
                                   remoteAircraft(u"CES3"_qs, 31 + 5 / 60.0, 121, 6000)});
        QVERIFY(m_harness->itemWithText(u"量程 10 NM"_qs));
        const QQuickItem *onRing = m_harness->items(u"radarContact"_qs).at(1);
        QCOMPARE(onRing->property("callsign").toString(), u"CES3"_qs);
        const QImage picture = m_harness->grab(u"simulator-rings"_qs);
        const QPoint middle = (onRing->mapToScene(QPointF()) * picture.width() / m_harness->view.width()).toPoint();
        const QColor glass(u"#111B2E"_qs); // what the symbol is filled with
        for (int y = -1; y <= 1; ++y)
            QCOMPARE(picture.pixelColor(middle + QPoint(0, y)).name(), glass.name());
    }

    void theRangeFollowsTheTraffic_data()
    {
        QTest::addColumn<double>("distanceNm");
        QTest::addColumn<QString>("range");
        QTest::newRow("close") << 1.5 << u"量程 2 NM"_qs;
        QTest::newRow("near") << 7.0 << u"量程 10 NM"_qs;
        QTest::newRow("far") << 55.0 << u"量程 80 NM"_qs;
        QTest::newRow("beyond all rings") << 900.0 << u"量程 320 NM"_qs;
    }

    void theRangeFollowsTheTraffic()
    {
        QFETCH(double, distanceNm);
        QFETCH(QString, range);
        model().setOwnAircraft(ownAircraft(0), {}, {}, false);
        model().setRemoteAircraft({remoteAircraft(u"CES1"_qs, 31 + distanceNm / 60, 121)});
        QVERIFY(m_harness->itemWithText(range));
        QVERIFY(item(u"radarContact"_qs));
        QVERIFY(m_harness->itemWithText(u"附近 1 个交通目标"_qs));
    }

    void heightsAreInHundredsOfFeet_data()
    {
        QTest::addColumn<double>("altitudeMslM");
        QTest::addColumn<QString>("symbol");
        QTest::addColumn<QString>("row");
        QTest::newRow("above") << 1365.76 << u"+12"_qs << u"+1200 ft"_qs;
        QTest::newRow("below") << 695.2 << u"−10"_qs << u"−1000 ft"_qs;
        QTest::newRow("level") << 1000.0 << u"00"_qs << u"0 ft"_qs;
        QTest::newRow("a hair below") << 999.0 << u"00"_qs << u"0 ft"_qs;
    }

    void heightsAreInHundredsOfFeet()
    {
        QFETCH(double, altitudeMslM);
        QFETCH(QString, symbol);
        QFETCH(QString, row);
        model().setOwnAircraft(ownAircraft(0), {}, {}, false);
        model().setRemoteAircraft({remoteAircraft(u"CES1"_qs, 31.1, 121, altitudeMslM)});
        TRY_VERIFY(m_harness->itemWithText(symbol));
        TRY_VERIFY(m_harness->itemWithText(row));
        TRY_VERIFY(m_harness->itemWithText(u"6.0 NM"_qs));
    }

    void theRangeIsPickedByButtons()
    {
        model().setOwnAircraft(ownAircraft(0), {}, {}, false);
        model().setRemoteAircraft({remoteAircraft(u"CES1"_qs, 31.1, 121)});
        m_harness->settle();
        QVERIFY(m_harness->itemWithText(u"量程 10 NM"_qs));
        QVERIFY(!item(u"freeRange"_qs));
        m_harness->click(item(u"widerRange"_qs));
        QVERIFY(m_harness->itemWithText(u"量程 20 NM"_qs));
        m_harness->click(item(u"narrowerRange"_qs));
        m_harness->click(item(u"narrowerRange"_qs));
        QVERIFY(m_harness->itemWithText(u"量程 5 NM"_qs));
        m_harness->click(item(u"freeRange"_qs));
        QVERIFY(m_harness->itemWithText(u"量程 10 NM"_qs));
        QVERIFY(model().pickedCallsign().isEmpty());
    }

    void theRangeIsPickedByTheWheel_data()
    {
        QTest::addColumn<QList<int>>("turns"); // eighths of a degree; away from the pilot is positive
        QTest::addColumn<QString>("range");
        QTest::newRow("towards the pilot") << QList<int>{-120} << u"量程 20 NM"_qs;
        QTest::newRow("away from him") << QList<int>{120} << u"量程 5 NM"_qs;
        QTest::newRow("there and back") << QList<int>{120, -120} << u"量程 10 NM"_qs;
        QTest::newRow("two notches at once") << QList<int>{-240} << u"量程 40 NM"_qs;
        QTest::newRow("a touch pad") << QList<int>{-30, -30, -30, -30} << u"量程 20 NM"_qs;
        QTest::newRow("too little") << QList<int>{-30, -30} << u"量程 10 NM"_qs;
    }

    void theRangeIsPickedByTheWheel()
    {
        QFETCH(QList<int>, turns);
        QFETCH(QString, range);
        model().setOwnAircraft(ownAircraft(0), {}, {}, false);
        model().setRemoteAircraft({remoteAircraft(u"CES1"_qs, 31.1, 121)});
        m_harness->settle();
        const QQuickItem *radar = item(u"trafficRadar"_qs);
        const QPointF middle = radar->mapToScene(QPointF(radar->width() / 2, radar->height() / 2));
        for (const int turn : turns) {
            QWheelEvent event(middle, middle, {}, {0, turn}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(&m_harness->view, &event);
        }
        m_harness->settle();
        QVERIFY(m_harness->itemWithText(range));
    }

    void aClickPicksInPlotAndList()
    {
        model().setOwnAircraft(ownAircraft(0), {}, {}, false);
        m_harness->fillTraffic(60);
        m_harness->settle();
        QQuickItem *contact = m_harness->items(u"radarContact"_qs).at(40);
        const QString callsign = contact->property("callsign").toString();
        QTest::mouseClick(&m_harness->view, Qt::LeftButton, {}, contact->mapToScene(QPointF()).toPoint());
        m_harness->settle();
        QCOMPARE(model().pickedCallsign(), callsign);
        QVERIFY(item(u"pickedRing"_qs));
        QCOMPARE(item(u"pickedRing"_qs)->parentItem(), contact);
        const QQuickItem *name = contact->findChild<QQuickItem *>(u"radarName"_qs);
        QVERIFY(name && name->isVisible()); // whoever is nearer
        QVERIFY(inList(callsign));          // the list has gone there
        QQuickItem *list = item(u"trafficList"_qs);
        list->setProperty("contentY", list->property("originY"));
        m_harness->settle();
        const QString nearest = m_harness->items(u"radarContact"_qs).first()->property("callsign").toString();
        m_harness->click(inList(nearest));
        QCOMPARE(model().pickedCallsign(), nearest);
        QCOMPARE(item(u"pickedRing"_qs)->parentItem()->property("callsign").toString(), nearest);
        m_harness->click(inList(nearest));
        QVERIFY(!item(u"pickedRing"_qs));
    }

    void theListIsWalkedByKeys()
    {
        m_harness->fillTraffic(60);
        m_harness->settle();
        QVERIFY(m_harness->tabTo(u"trafficList"_qs));
        const auto press = [this](Qt::Key key) {
            QTest::keyClick(&m_harness->view, key);
            m_harness->settle();
        };
        const auto callsignAt = [this](int row) {
            return m_harness->items(u"radarContact"_qs).at(row)->property("callsign").toString();
        };
        QVERIFY(!item(u"pickedRing"_qs));
        press(Qt::Key_Down);
        press(Qt::Key_Down);
        QCOMPARE(model().pickedCallsign(), callsignAt(1));
        QCOMPARE(item(u"pickedRing"_qs)->parentItem()->property("callsign").toString(), callsignAt(1));
        QVERIFY(inList(callsignAt(1)));
        QVERIFY(m_harness->view.activeFocusItem()->property("marked").toBool());
        QTest::keySequence(&m_harness->view, QKeySequence::Copy);
        QVERIFY(QGuiApplication::clipboard()->text().startsWith(callsignAt(1) + u' '));
        press(Qt::Key_End);
        QCOMPARE(model().pickedCallsign(), callsignAt(59));
        QVERIFY(inList(callsignAt(59)));
        QCOMPARE(m_harness->view.activeFocusItem()->property("callsign").toString(), callsignAt(59));
        press(Qt::Key_Up);
        QCOMPARE(model().pickedCallsign(), callsignAt(58));
        m_harness->grab(u"simulator-walked"_qs);
        press(Qt::Key_Home);
        press(Qt::Key_Up);
        QCOMPARE(model().pickedCallsign(), callsignAt(0)); // there is no row above
        press(Qt::Key_PageDown);
        QVERIFY(model().contactRow(model().pickedCallsign()) > 2);
    }

    /// The rows change places: what the keys have picked they keep.
    void theKeysFollowThePickedAircraft()
    {
        model().setOwnAircraft(ownAircraft(0), {}, {}, false);
        model().setRemoteAircraft({remoteAircraft(u"NEAR"_qs, 31.1, 121), remoteAircraft(u"FAR"_qs, 31.2, 121)});
        m_harness->settle();
        QVERIFY(m_harness->tabTo(u"trafficList"_qs));
        QTest::keyClick(&m_harness->view, Qt::Key_Down);
        QCOMPARE(model().pickedCallsign(), u"NEAR"_qs);
        model().setRemoteAircraft({remoteAircraft(u"NEAR"_qs, 31.3, 121), remoteAircraft(u"FAR"_qs, 31.2, 121)});
        m_harness->settle();
        QCOMPARE(model().contactRow(u"NEAR"_qs), 1);
        QCOMPARE(m_harness->view.activeFocusItem()->property("callsign").toString(), u"NEAR"_qs);
        model().setRemoteAircraft({remoteAircraft(u"FAR"_qs, 31.2, 121)});
        m_harness->settle();
        QTest::keyClick(&m_harness->view, Qt::Key_Down);
        QCOMPARE(model().pickedCallsign(), u"FAR"_qs); // who has gone is no place to go on from
    }

    void theListGrowsAndShrinks()
    {
        QQuickItem *list = item(u"trafficList"_qs);
        QCOMPARE(list->property("count").toInt(), 0);
        m_harness->fillTraffic(300);
        QCOMPARE(list->property("count").toInt(), 200);
        model().setRemoteAircraft({remoteAircraft(u"CES1"_qs, 31.1, 121)});
        QCOMPARE(list->property("count").toInt(), 1);
        model().setRemoteAircraft({});
        QVERIFY(m_harness->itemWithText(u"附近暂无交通目标"_qs));
        QVERIFY(!item(u"radarContact"_qs));
    }

    void aSnapshotWithoutAnOwnPositionShowsItsLabels()
    {
        model().setMode(u"MSFS"_qs);
        model().setTrafficContacts({QVariantMap{{u"label"_qs, u"OBJ-7"_qs}}, QVariant(3)});
        TRY_VERIFY(m_harness->itemWithText(u"OBJ-7"_qs));
        QCOMPARE(item(u"trafficList"_qs)->property("count").toInt(), 2);
    }

    void aReaderOfTheListIsLeftThere_data()
    {
        QTest::addColumn<int>("before");
        QTest::addColumn<int>("after");
        QTest::newRow("one comes") << 40 << 41;
        QTest::newRow("one goes") << 40 << 39;
        QTest::newRow("many come") << 40 << 200;
    }

    void aReaderOfTheListIsLeftThere()
    {
        QFETCH(int, before);
        QFETCH(int, after);
        QQuickItem *list = item(u"trafficList"_qs);
        m_harness->fillTraffic(before);
        m_harness->settle();
        QVERIFY(list->setProperty("contentY", 300.0));
        m_harness->settle();
        m_harness->fillTraffic(after);
        m_harness->settle();
        QCOMPARE(list->property("count").toInt(), after);
        QCOMPARE(list->property("contentY").toReal(), 300.0);
    }

    void symbolsStayWhileTrafficComesAndGoes()
    {
        m_harness->fillTraffic(3);
        const QPointer<QQuickItem> first = item(u"radarContact"_qs);
        QVERIFY(first);
        for (const int count : {12, 13, 12, 50, 51, 50, 200, 1}) {
            m_harness->fillTraffic(count);
            QVERIFY2(first, qPrintable(QString::number(count)));
            QCOMPARE(symbols(), count);
        }
        m_harness->fillTraffic(0);
        QCOMPARE(symbols(), 0);
    }

    void longCallsignsStayOnTheGlass()
    {
        QList<tarvo::model::RemoteAircraft> around;
        for (int i = 0; i < 6; ++i) {
            const double angle = i * std::numbers::pi / 3 + 0.2;
            around << remoteAircraft(QString(32, u'W'), 31 + 0.12 * std::cos(angle), 121 + 0.12 * std::sin(angle));
        }
        model().setOwnAircraft(ownAircraft(0), {}, {}, false);
        model().setRemoteAircraft(around);
        m_harness->settle();
        const QQuickItem *glass = item(u"trafficRadar"_qs);
        const QRectF inside = glass->mapRectToScene(QRectF(0, 0, glass->width(), glass->height()));
        int named = 0;
        const QList<QQuickItem *> texts = m_harness->texts();
        for (const QQuickItem *text : texts) {
            if (!text->property("text").toString().startsWith(QLatin1String("WW")) || !glass->isAncestorOf(text))
                continue;
            ++named;
            QVERIFY(text->width() <= 90 && text->clip());
            QVERIFY(inside.contains(text->mapRectToScene(QRectF(0, 0, text->width(), text->height()))));
        }
        QCOMPARE(named, 6);
    }

private:
    /// The callsign's text in the list; null when it isn't in sight there.
    QQuickItem *inList(const QString &callsign)
    {
        const QQuickItem *list = item(u"trafficList"_qs);
        const QRectF sight = list->mapRectToScene(QRectF(0, 0, list->width(), list->height()));
        for (QQuickItem *text : m_harness->texts())
            if (list->isAncestorOf(text) && text->property("text").toString() == callsign &&
                sight.contains(text->mapToScene(QPointF(1, 1))))
                return text;
        return nullptr;
    }

    int symbols() { return int(m_harness->items(u"radarContact"_qs).size()); }
};

TARVO_TEST(TrafficViewTest)
#include "TrafficViewTest.moc"
