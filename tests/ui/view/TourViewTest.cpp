#include "PageHarness.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QTest>

using tarvo::test::PageHarness;

/// The cards of the first start.
class TourViewTest : public QObject
{
    Q_OBJECT

private slots:
    void theCardsPointAtTheirPlaces()
    {
        PageHarness harness(u"NONE"_qs, {1000, 700});
        QVERIFY(!harness.item(u"tourCard1"_qs));
        harness.tour().begin();
        QVERIFY(harness.item(u"tourCard1"_qs));
        QVERIFY(right(harness.item(u"tourCard1"_qs)) < harness.item(u"msfsCard"_qs)->mapToScene({}).x());
        harness.settle();
        harness.grab(u"tour-1"_qs);
        harness.dashboard().setCurrentMode(u"XPLANE"_qs);
        harness.tour().modePicked();
        for (int step = 2; step <= 3; ++step) {
            harness.settle();
            harness.grab(u"tour-%1"_qs.arg(step));
            const QQuickItem *card = harness.item(u"tourCard%1"_qs.arg(step));
            const QQuickItem *place = harness.item(step == 2 ? u"section-server"_qs : u"section-messages"_qs);
            QVERIFY(card && place);
            QVERIFY(card->mapToScene({}).x() > right(place));
            QCOMPARE(card->mapToScene({0, card->height() / 2}).y(), place->mapToScene({0, place->height() / 2}).y());
            QCOMPARE(harness.textsOutOfBounds().join(u"; "_qs), QString());
            harness.click(harness.item(u"tourNext"_qs));
        }
        QCOMPARE(harness.tour().step(), 0);
        QCOMPARE(harness.complaints(), QStringList());
    }

    void itStandsInNobodysWay()
    {
        PageHarness harness(u"XPLANE"_qs);
        harness.tour().begin();
        harness.tour().modePicked();
        harness.openSection(u"设置"_qs); // by a click beside the card
        QVERIFY(harness.item(u"settingsScroll"_qs));
        QVERIFY(harness.item(u"tourCard2"_qs));
        QTest::keyClick(&harness.view, Qt::Key_3, Qt::ControlModifier);
        QVERIFY(harness.tabTo(u"callsignField"_qs));
        harness.type(u"ces1"_qs);
        QCOMPARE(harness.server().callsign(), u"ces1"_qs); // the form shows it in capitals
        QTest::keyClick(&harness.view, Qt::Key_Escape);
        QCOMPARE(harness.tour().step(), 0);
        QVERIFY(!harness.item(u"tourCard2"_qs));
    }

    void itCanBeSkipped()
    {
        PageHarness harness(u"NONE"_qs);
        harness.tour().begin();
        harness.click(harness.item(u"tourSkip"_qs));
        QCOMPARE(harness.tour().step(), 0);
        QVERIFY(!harness.item(u"tourCard1"_qs));
    }

private:
    static qreal right(const QQuickItem *item) { return item->mapToScene({item->width(), 0}).x(); }
};

TARVO_TEST(TourViewTest)
#include "TourViewTest.moc"
