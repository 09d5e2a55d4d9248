#include "SimulatorPageFixture.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QPointingDevice>
#include <QTest>

#include <cmath>
#include <memory>

using tarvo::test::ownAircraft;
using tarvo::test::remoteAircraft;

namespace {

QString callsign(int i)
{
    const char *const airlines[] = {"CES", "CCA", "CSN", "CSC", "CHH"};
    return i == 3 ? u"CCAWMDG_2352"_qs : QLatin1String(airlines[i % 5]) + QString::number(101 + 379 * i % 8900);
}

/// Two rows of stands beside the own aircraft, as seen from the middle of the apron.
QList<tarvo::model::RemoteAircraft> parked(int count)
{
    QList<tarvo::model::RemoteAircraft> aircraft;
    for (int i = 0; i < count; ++i) {
        const double along = (i / 2 - count / 4.0 + 0.3) * 0.0013;
        const double across = i % 2 == 0 ? 0.0045 : -0.0035;
        auto one = remoteAircraft(callsign(i), 31 + along + across * 0.3, 121 + across - along * 0.3);
        one.visualState.heading = i % 2 == 0 ? 252 : 72;
        aircraft << one;
    }
    return aircraft;
}

QList<tarvo::model::RemoteAircraft> flying(int count, double farthestNm)
{
    QList<tarvo::model::RemoteAircraft> aircraft;
    for (int i = 0; i < count; ++i) {
        const double angle = 0.7 + 2.4 * i;
        const double degrees = (0.12 + 0.88 * i / count) * farthestNm / 60;
        auto one =
            remoteAircraft(callsign(100 + i), 31 + degrees * std::cos(angle),
                           121 + degrees * std::sin(angle) / std::cos(31 * 3.14159 / 180), 1000 + 350.0 * (i % 9 - 3));
        one.visualState.heading = (140 * i) % 360;
        aircraft << one;
    }
    return aircraft;
}

} // namespace

/// The plot among many.
class TrafficCrowdTest : public QObject, protected tarvo::test::SimulatorPageFixture
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        QCOMPARE(m_harness->complaints(), QStringList());
        m_harness.reset();
    }

    void everySymbolAndNoHeapOfLabels_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("onStands");
        QTest::addColumn<int>("inFlight");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<int>("atLeast"); // callsigns
        QTest::addColumn<int>("nearest"); // of them; 80 aircraft under the own one's symbol are beyond naming
        for (const QSize size : {QSize(1000, 700), QSize(1280, 800), QSize(1920, 1080)}) {
            QTest::addRow("apron %d", size.width()) << u"apron"_qs << 40 << 0 << size << 8 << 8;
            QTest::addRow("airport %d", size.width()) << u"airport"_qs << 20 << 20 << size << 12 << 8;
            QTest::addRow("area %d", size.width()) << u"area"_qs << 0 << 60 << size << 18 << 6;
            QTest::addRow("too many %d", size.width()) << u"too-many"_qs << 80 << 120 << size << 12 << 0;
        }
    }

    void everySymbolAndNoHeapOfLabels()
    {
        QFETCH(QString, name);
        QFETCH(int, onStands);
        QFETCH(int, inFlight);
        QFETCH(QSize, size);
        QFETCH(int, atLeast);
        QFETCH(int, nearest);
        open(size);
        show(onStands, inFlight);
        m_harness->grab(u"crowd-%1-%2"_qs.arg(name).arg(size.width()));
        const QList<QQuickItem *> contacts = m_harness->items(u"radarContact"_qs);
        QCOMPARE(contacts.size(), onStands + inFlight);
        for (const QQuickItem *contact : contacts)
            QVERIFY(glass().contains(contact->mapToScene(QPointF())));
        QVERIFY2(names().size() >= atLeast, qPrintable(QString::number(names().size())));
        // Those that matter most are told.
        for (const QQuickItem *contact : contacts.first(nearest))
            QVERIFY2(names().contains(contact->property("callsign").toString()),
                     qPrintable(contact->property("callsign").toString()));
        QCOMPARE(heaps(), QStringList());
    }

    void labelsStayWhileTheOwnAircraftTurns()
    {
        open();
        show(20, 20);
        const QStringList before = names();
        for (int i = 0; i < 20; ++i) {
            model().setOwnAircraft(ownAircraft(20 + (i % 2) * 0.2), {}, {}, false);
            m_harness->settle();
            QCOMPARE(names(), before);
        }
        for (int heading = 20; heading < 380; heading += 24) {
            model().setOwnAircraft(ownAircraft(heading), {}, {}, false);
            m_harness->settle();
            QCOMPARE(heaps(), QStringList());
        }
    }

    void whoTradesPlacesKeepsItsLabel()
    {
        open();
        const auto aircraft = [](const char *callsign, double latitude) {
            return remoteAircraft(QLatin1String(callsign), latitude, 121);
        };
        model().setOwnAircraft(ownAircraft(0), {}, {}, false);
        model().setRemoteAircraft({aircraft("CES1", 31.02), aircraft("CES2", 31.0201), aircraft("CES9", 31.1)});
        m_harness->settle();
        const QStringList before = names();
        QVERIFY(before.contains(u"CES1"_qs));
        model().setRemoteAircraft({aircraft("CES2", 31.0199), aircraft("CES1", 31.02), aircraft("CES9", 31.1)});
        m_harness->settle();
        QCOMPARE(names(), before);
    }

    void pointingAtASymbolTellsWhoItIs()
    {
        open();
        show(20, 20);
        QVERIFY(!item(u"radarTip"_qs));
        const QList<QQuickItem *> contacts = m_harness->items(u"radarContact"_qs);
        QCOMPARE(contacts.size(), 40);
        const QQuickItem *contact = contacts.at(30); // far out, with nobody near
        pointAt(contact->mapToScene(QPointF(3, 3)));
        const QQuickItem *tip = item(u"radarTip"_qs);
        QVERIFY(tip);
        const QString callsign = contact->property("callsign").toString();
        const QString height = contact->property("heightText").toString();
        QVERIFY(m_harness->itemWithText(callsign + u"  "_qs + height));
        QVERIFY(glass().contains(tip->mapRectToScene(QRectF(0, 0, tip->width(), tip->height()))));
        pointAt(glass().topLeft() + QPointF(30, 30));
        QVERIFY(!item(u"radarTip"_qs));
        pointAt(contact->mapToScene(QPointF()));
        QVERIFY(item(u"radarTip"_qs));
        model().setRemoteAircraft({});
        m_harness->settle();
        QVERIFY(!item(u"radarTip"_qs));
    }

    void aTapTellsWhoItIs()
    {
        open();
        show(0, 12);
        const QList<QQuickItem *> contacts = m_harness->items(u"radarContact"_qs);
        QCOMPARE(contacts.size(), 12);
        tap(contacts.at(5)->mapToScene(QPointF()));
        QVERIFY(item(u"radarTip"_qs));
        tap(glass().topLeft() + QPointF(30, 30));
        QVERIFY(!item(u"radarTip"_qs));
    }

    void hostileCallsignsBreakNothing_data()
    {
        QTest::addColumn<QString>("callsign");
        QTest::newRow("10,000 letters") << QString(10'000, u'W');
        QTest::newRow("markup") << u"<h1>BIG</h1><img src=x>"_qs;
        QTest::newRow("right to left") << QString(QChar(0x202e)) + u"CES"_qs + QString(40, QChar(0x05d0));
        QTest::newRow("line breaks") << u"CES\nCCA\u2028CSN\u2029CHH"_qs;
        QTest::newRow("nothing") << QString();
        QTest::newRow("combining") << QString(200, QChar(0x0301));
        QTest::newRow("half a letter at the cut") << QString(39, u'A') + QString::fromUcs4(U"\U0001F6E9\U0001F6E9");
    }

    void hostileCallsignsBreakNothing()
    {
        QFETCH(QString, callsign);
        open({1000, 700});
        QList<tarvo::model::RemoteAircraft> around = flying(12, 38);
        for (int i = 0; i < 4; ++i)
            around[3 * i].callsign = callsign;
        model().setOwnAircraft(ownAircraft(0), {}, {}, false);
        model().setRemoteAircraft(around);
        m_harness->settle();
        QCOMPARE(m_harness->items(u"radarContact"_qs).size(), 12);
        QCOMPARE(heaps(), QStringList());
        QVERIFY(names().size() >= 8);
        const QQuickItem *contact = m_harness->items(u"radarContact"_qs).first();
        pointAt(contact->mapToScene(QPointF()));
        const QQuickItem *tip = item(u"radarTip"_qs);
        QVERIFY(tip);
        QVERIFY(glass().contains(tip->mapRectToScene(QRectF(0, 0, tip->width(), tip->height()))));
    }

private:
    void show(int onStands, int inFlight)
    {
        model().setOwnAircraft(ownAircraft(20), {}, {}, false);
        model().setRemoteAircraft(parked(onStands) + flying(inFlight, 38));
        m_harness->settle();
    }

    void pointAt(const QPointF &scene)
    {
        QTest::mouseMove(&m_harness->view, scene.toPoint());
        m_harness->settle();
    }

    void tap(const QPointF &scene)
    {
        static const std::unique_ptr<QPointingDevice> screen(QTest::createTouchDevice());
        QTest::touchEvent(&m_harness->view, screen.get()).press(0, scene.toPoint());
        QTest::touchEvent(&m_harness->view, screen.get()).release(0, scene.toPoint());
        m_harness->settle();
    }

    QRectF glass() { return box(item(u"trafficRadar"_qs)); }

    /// The callsigns that are to be read, sorted.
    QStringList names()
    {
        QStringList found;
        const QList<QQuickItem *> texts = m_harness->items(u"radarName"_qs);
        for (const QQuickItem *text : texts)
            found << text->property("text").toString();
        found.sort();
        return found;
    }

    /// Labels on other labels, on others' symbols, or outside the glass.
    QStringList heaps()
    {
        QStringList found;
        const QList<QQuickItem *> contacts = m_harness->items(u"radarContact"_qs);
        const QList<QQuickItem *> labels = m_harness->items(u"radarName"_qs) + m_harness->items(u"radarAltitude"_qs);
        for (qsizetype i = 0; i < labels.size(); ++i) {
            const QQuickItem *label = labels.at(i);
            const QString text = label->property("text").toString().left(20);
            if (!glass().contains(box(label)))
                found << text + u" outside"_qs;
            for (qsizetype j = 0; j < i; ++j)
                if (box(label).intersects(box(labels.at(j))))
                    found << text + u" on "_qs + labels.at(j)->property("text").toString().left(20);
            for (const QQuickItem *contact : contacts)
                if (contact != label->parentItem() && box(label).intersects(mark(contact)))
                    found << text + u" on a symbol"_qs;
        }
        return found;
    }

    static QRectF box(const QQuickItem *item)
    {
        return item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
    }
    static QRectF mark(const QQuickItem *contact) { return contact->mapRectToScene(QRectF(-6, -6, 12, 12)); }
};

TARVO_TEST(TrafficCrowdTest)
#include "TrafficCrowdTest.moc"
