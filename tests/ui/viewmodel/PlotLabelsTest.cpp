#include "ui/viewmodel/PlotLabels.h"

#include "support/TestRegistry.h"

#include <QObject>
#include <QTest>

#include <cmath>

using tarvo::ui::PlotLabels;

namespace {

const QRectF plot(-200, -150, 400, 300);

QStringList numbered(int count)
{
    QStringList found;
    for (int i = 0; i < count; ++i)
        found << u"CES%1"_qs.arg(i);
    return found;
}

} // namespace

/// The numbers to and from the plot's page.
class PlotLabelsTest : public QObject
{
    Q_OBJECT

private slots:
    void threePlacesForSixFigures()
    {
        PlotLabels labels;
        const QList<qreal> figures{50, 0, 1, 40, 20, 1, -50, 0, 2, 40, 0, 0, 0, 80, 3, 0, 20, 0};
        const QList<qreal> places = labels.place(numbered(3), figures, 13, plot, {});
        QCOMPARE(places.size(), 9);
        QCOMPARE(places.mid(0, 6), (QList<qreal>{11, -6.5, 1, -51, -6.5, 0}));
        QVERIFY(std::isnan(places.at(6)) && std::isnan(places.at(7)));
        QCOMPARE(places.at(8), 1.0);
    }

    void whatIsTakenStaysFree()
    {
        PlotLabels labels;
        const QVariantList taken{QRectF(60, -10, 50, 20), u"no rectangle"_qs};
        const QList<qreal> places = labels.place(numbered(1), {50, 0, 1, 40, 0, 0}, 13, plot, taken);
        QCOMPARE(places.size(), 3);
        QVERIFY(std::isfinite(places.at(0)) && places.at(0) != 11);
    }

    void aLabelIsKept()
    {
        PlotLabels labels;
        QCOMPARE(labels.place(numbered(1), {-1, 0, 1, 40, 0, 0}, 13, plot, {}).at(0), -51.0);
        QCOMPARE(labels.place(numbered(1), {1, 0, 1, 40, 0, 0}, 13, plot, {}).at(0), -51.0);
    }

    void tooFewFigures_data()
    {
        QTest::addColumn<int>("contacts");
        QTest::addColumn<int>("figures");
        QTest::addColumn<int>("places");
        QTest::newRow("none") << 0 << 0 << 0;
        QTest::newRow("no callsigns") << 0 << 60 << 0;
        QTest::newRow("no figures") << 3 << 0 << 0;
        QTest::newRow("a part of one's") << 3 << 11 << 3;
        QTest::newRow("more than enough") << 2 << 100 << 6;
    }

    void tooFewFigures()
    {
        QFETCH(int, contacts);
        QFETCH(int, figures);
        QFETCH(int, places);
        PlotLabels labels;
        const QList<qreal> told(figures, 20);
        QCOMPARE(labels.place(numbered(contacts), told, 13, plot, {}).size(), places);
    }
};

TARVO_TEST(PlotLabelsTest)
#include "PlotLabelsTest.moc"
