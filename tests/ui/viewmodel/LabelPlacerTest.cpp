#include "ui/viewmodel/LabelPlacer.h"

#include "support/Columns.h"
#include "support/OddNumbers.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

using namespace tarvo::ui;
using tarvo::test::columns;
using tarvo::test::infinite;
using tarvo::test::notANumber;

namespace {

constexpr double reach = LabelPlacer::symbolReach;
const QRectF glass(-220, -160, 440, 320);
const QSizeF nameSize(48, 13);
const QSizeF altitudeSize(22, 13);

PlotSymbol symbol(const char *callsign, QPointF at, double distance)
{
    return {QString::fromLatin1(callsign), at, distance, nameSize, {}, false};
}

/// The same crowd for the same seed, thick in the middle, with the distance on the plot as the distance.
QList<PlotSymbol> crowd(int count, unsigned seed)
{
    std::mt19937 random(seed); // its numbers are the same everywhere, those of the distributions are not
    const auto fraction = [&random] { return random() / double(std::mt19937::max()); };
    QList<PlotSymbol> symbols;
    for (int i = 0; i < count; ++i) {
        const double away = 150 * fraction() * fraction();
        const double angle = 2 * std::numbers::pi * fraction();
        const QSizeF text(30 + 55 * fraction(), 13);
        symbols << PlotSymbol{
            u"CES%1"_qs.arg(i), {away * std::sin(angle), away * std::cos(angle)}, away, text, altitudeSize,
            random() % 2 == 0};
    }
    return symbols;
}

QRectF nameBox(const PlotSymbol &symbol, const PlotLabel &label)
{
    return {symbol.at + label.name.value_or(QPointF()),
            QSizeF(std::min(symbol.name.width(), LabelPlacer::longestLabel), symbol.name.height())};
}

QRectF altitudeBox(const PlotSymbol &symbol)
{
    return {symbol.at + LabelPlacer::altitudeCorner(symbol.altitude, symbol.below), symbol.altitude};
}

struct Box
{
    qsizetype owner;
    QRectF area;
};

QList<Box> boxes(const QList<PlotSymbol> &symbols, const QList<PlotLabel> &labels)
{
    QList<Box> found;
    for (qsizetype i = 0; i < labels.size(); ++i) {
        if (labels.at(i).name)
            found << Box{i, nameBox(symbols.at(i), labels.at(i))};
        if (labels.at(i).altitude)
            found << Box{i, altitudeBox(symbols.at(i))};
    }
    return found;
}

/// What is wrong with these labels; empty for nothing.
QString faults(const QList<PlotSymbol> &symbols, const QList<PlotLabel> &labels, const QList<QRectF> &taken = {})
{
    if (labels.size() != symbols.size())
        return u"not one for each"_qs;
    const QList<Box> all = boxes(symbols, labels);
    for (qsizetype i = 0; i < all.size(); ++i) {
        const Box &box = all.at(i);
        if (!glass.contains(box.area))
            return u"outside the glass"_qs;
        for (qsizetype j = 0; j < i; ++j)
            if (all.at(j).area.intersects(box.area))
                return u"labels of %1 and %2 overlap"_qs.arg(all.at(j).owner).arg(box.owner);
        for (const QRectF &area : taken)
            if (area.intersects(box.area))
                return u"label of %1 on what is taken"_qs.arg(box.owner);
        for (const PlotSymbol &other : symbols)
            if (other.at != symbols.at(box.owner).at &&
                QRectF(other.at - QPointF(reach, reach), QSizeF(2 * reach, 2 * reach)).intersects(box.area))
                return u"label of %1 on another's symbol"_qs.arg(box.owner);
    }
    return {};
}

int named(const QList<PlotLabel> &labels)
{
    return int(std::count_if(labels.begin(), labels.end(), [](const PlotLabel &label) { return label.name; }));
}

} // namespace

class LabelPlacerTest : public QObject
{
    Q_OBJECT

private slots:
    void aLoneLabelStandsOutside_data()
    {
        columns<QPointF, QPointF>("at", "corner");
        QTest::newRow("right of the middle") << QPointF(50, 20) << QPointF(11, -6.5);
        QTest::newRow("left of the middle") << QPointF(-50, 20) << QPointF(-59, -6.5);
        QTest::newRow("ahead") << QPointF(0, -60) << QPointF(11, -6.5);
        QTest::newRow("at the right edge") << QPointF(210, 0) << QPointF(-59, -6.5);
        QTest::newRow("at the left edge") << QPointF(-210, 0) << QPointF(11, -6.5);
        QTest::newRow("at the top edge") << QPointF(0, -159) << QPointF(7, 3);
        QTest::newRow("at the bottom edge") << QPointF(-10, 159) << QPointF(-55, -16);
    }

    void aLoneLabelStandsOutside()
    {
        QFETCH(QPointF, at);
        QFETCH(QPointF, corner);
        const QList<PlotLabel> labels = LabelPlacer().place({symbol("CES1", at, 1)}, glass, {});
        QCOMPARE(labels.size(), 1);
        QVERIFY(labels.first().name);
        QCOMPARE(*labels.first().name, corner);
        QVERIFY(!labels.first().altitude);
    }

    void anAltitudeStandsOverOrUnder_data()
    {
        columns<bool, QPointF, bool>("below", "at", "shown");
        QTest::newRow("above") << false << QPointF(50, 0) << true;
        QTest::newRow("below") << true << QPointF(50, 0) << true;
        QTest::newRow("above, over the edge") << false << QPointF(50, -150) << false;
        QTest::newRow("below, at the upper edge") << true << QPointF(50, -150) << true;
        QTest::newRow("below, over the edge") << true << QPointF(50, 150) << false;
    }

    void anAltitudeStandsOverOrUnder()
    {
        QFETCH(bool, below);
        QFETCH(QPointF, at);
        QFETCH(bool, shown);
        PlotSymbol one = symbol("CES1", at, 1);
        one.altitude = altitudeSize;
        one.below = below;
        const QList<PlotLabel> labels = LabelPlacer().place({one}, glass, {});
        QCOMPARE(labels.first().altitude, shown);
        QVERIFY(labels.first().name);
        QCOMPARE(faults({one}, labels), QString());
    }

    void theNearestGetsTheOnlyRoom()
    {
        const QRectF narrow(-30, -7, 100, 14); // room for one, beside the symbols
        for (const bool reversed : {false, true}) {
            QList<PlotSymbol> symbols{symbol("NEAR", {0, 0}, 1), symbol("FAR", {1, 0}, 2)};
            if (reversed)
                std::reverse(symbols.begin(), symbols.end());
            const QList<PlotLabel> labels = LabelPlacer().place(symbols, narrow, {});
            QCOMPARE(bool(labels.at(reversed ? 1 : 0).name), true);
            QCOMPARE(bool(labels.at(reversed ? 0 : 1).name), false);
        }
    }

    void nothingOverlaps_data()
    {
        columns<int, int>("count", "atLeast");
        QTest::newRow("a few") << 5 << 2;
        QTest::newRow("dozens") << 40 << 10;
        QTest::newRow("sixty") << 60 << 11;
        QTest::newRow("two hundred") << 200 << 12;
        QTest::newRow("seven hundred") << 700 << 12;
    }

    void nothingOverlaps()
    {
        QFETCH(int, count);
        QFETCH(int, atLeast);
        const QList<QRectF> taken{{-11, -3, 22, 4}, {-5, -11, 10, 23}, {-28, -160, 56, 14}};
        for (unsigned seed = 0; seed < 10; ++seed) {
            const QList<PlotSymbol> symbols = crowd(count, seed);
            const QList<PlotLabel> labels = LabelPlacer().place(symbols, glass, taken);
            QCOMPARE(faults(symbols, labels, taken), QString());
            QVERIFY2(named(labels) >= atLeast, qPrintable(QString::number(named(labels))));
        }
    }

    void aFartherSymbolIsLeftFree()
    {
        const QList<PlotSymbol> symbols{symbol("NEAR", {20, 0}, 1), symbol("FAR", {45, 0}, 2)};
        const QList<PlotLabel> labels = LabelPlacer().place(symbols, glass, {});
        QVERIFY(labels.at(0).name);
        const QRectF far(QPointF(45 - reach, -reach), QSizeF(2 * reach, 2 * reach));
        QVERIFY(!nameBox(symbols.at(0), labels.at(0)).intersects(far));
    }

    void theNearestStandsOffFromACrowd_data()
    {
        QTest::addColumn<int>("nearer"); // contacts
        QTest::addColumn<int>("across"); // half the crowd's width
        columns<int, bool>("down", "named");
        QTest::newRow("beside a few") << 0 << 10 << 10 << true;
        QTest::newRow("over a wide crowd") << 0 << 150 << 20 << true;
        QTest::newRow("beside a high crowd") << 0 << 60 << 150 << true;
        QTest::newRow("a crowd without end") << 0 << 220 << 160 << false;
        QTest::newRow("the twelfth") << 11 << 150 << 20 << true;
        QTest::newRow("the thirteenth doesn't") << 12 << 150 << 20 << false;
    }

    void theNearestStandsOffFromACrowd()
    {
        QFETCH(int, nearer);
        QFETCH(int, across);
        QFETCH(int, down);
        QFETCH(bool, named);
        QList<PlotSymbol> symbols{symbol("NEAR", {0, 0}, 1)};
        for (int x = -across; x <= across; x += 10)
            for (int y = -down; y <= down; y += 10)
                if (x != 0 || y != 0)
                    symbols << PlotSymbol{QString(), QPointF(x, y), 2, {}, {}, false};
        for (int i = 0; i < nearer; ++i)
            symbols << PlotSymbol{QString(), QPointF(0, 0), 0, {}, {}, false};
        const QList<PlotLabel> labels = LabelPlacer().place(symbols, glass, {});
        QCOMPARE(bool(labels.first().name), named);
        QCOMPARE(faults(symbols, labels), QString());
    }

    void aLabelThatStandsOffComesBackForMuchBetterRoom()
    {
        LabelPlacer placer;
        const auto off = [&placer](int down) { // a crowd that reaches so far over and under it
            QList<PlotSymbol> symbols{symbol("NEAR", {0, 0}, 1)};
            for (int x = -150; x <= 150; x += 10)
                for (int y = -down; y <= down; y += 10)
                    if (x != 0 || y != 0)
                        symbols << PlotSymbol{QString(), QPointF(x, y), 2, {}, {}, false};
            return std::abs(placer.place(symbols, glass, {}).first().name->y() + nameSize.height() / 2);
        };
        const double far = off(60);
        QVERIFY(far > 60);
        QCOMPARE(off(50), far); // a little nearer isn't worth it
        QVERIFY(off(20) < far - 20);
        QCOMPARE(LabelPlacer().place({symbol("NEAR", {0, 0}, 1)}, glass, {}).first().name, QPointF(11, -6.5));
    }

    void aLabelIsKeptWhileItFits()
    {
        LabelPlacer placer;
        // Seen from the right side, the left is no longer the first choice.
        const auto at = [&placer](double x) {
            return *placer.place({symbol("CES1", {x, 0}, 1)}, glass, {}).first().name;
        };
        QCOMPARE(at(-1), QPointF(-59, -6.5));
        QCOMPARE(at(1), QPointF(-59, -6.5));
        QCOMPARE(at(120), QPointF(-59, -6.5));
        QCOMPARE(at(-165), QPointF(-55, -16)); // out of the glass beside it
        QCOMPARE(at(-100), QPointF(-55, -16));
    }

    void aLabelIsKeptFromALittleNearer_data()
    {
        columns<double, bool>("distance", "keeps");
        QTest::newRow("farther") << 11.0 << true;
        QTest::newRow("equal") << 10.0 << true;
        QTest::newRow("a little nearer") << 8.5 << true;
        QTest::newRow("clearly nearer") << 7.5 << false;
    }

    void aLabelIsKeptFromALittleNearer()
    {
        QFETCH(double, distance);
        QFETCH(bool, keeps);
        const QRectF narrow(-30, -7, 100, 14);
        LabelPlacer placer;
        const PlotSymbol first = symbol("FIRST", {0, 0}, 10);
        QVERIFY(placer.place({first}, narrow, {}).first().name);
        const QList<PlotLabel> labels = placer.place({first, symbol("SECOND", {-1, 0}, distance)}, narrow, {});
        QCOMPARE(bool(labels.at(0).name), keeps);
        QCOMPARE(bool(labels.at(1).name), !keeps);
    }

    void anAltitudeIsKeptFromANameALittleNearer()
    {
        const QRectF narrow(-30, -22, 72, 15.5); // the name has but one place
        const PlotSymbol first{u"FIRST"_qs, {0, 0}, 10, {}, altitudeSize, false};
        for (const double distance : {8.5, 7.5}) {
            LabelPlacer placer;
            QVERIFY(placer.place({first}, narrow, {}).first().altitude);
            const auto labels = placer.place({first, symbol("SECOND", {-20, -15}, distance)}, narrow, {});
            QCOMPARE(labels.at(0).altitude, distance > 8);
            QCOMPARE(bool(labels.at(1).name), distance < 8);
        }
    }

    void anAltitudeTakesNobodysPlace()
    {
        const PlotSymbol first{u"FIRST"_qs, {0, 0}, 10, {}, altitudeSize, false};
        const PlotSymbol second{u"SECOND"_qs, {6, 0}, 5, {}, altitudeSize, false};
        LabelPlacer placer;
        QVERIFY(placer.place({first}, glass, {}).first().altitude);
        const QList<PlotLabel> labels = placer.place({first, second}, glass, {});
        QVERIFY(labels.at(0).altitude && !labels.at(1).altitude);
    }

    void aNewcomerTakesNobodysPlaceWithoutNeed()
    {
        LabelPlacer placer;
        const PlotSymbol first = symbol("FIRST", {40, 0}, 10);
        const QPointF before = *placer.place({first}, glass, {}).first().name;
        // Its first choice would be just there.
        const QList<PlotLabel> labels = placer.place({first, symbol("SECOND", {30, 9}, 5)}, glass, {});
        QVERIFY(labels.at(0).name && labels.at(1).name);
        QCOMPARE(*labels.at(0).name, before);
    }

    void whoHasLeftIsForgotten()
    {
        LabelPlacer placer;
        QCOMPARE(*placer.place({symbol("CES1", {-1, 0}, 1)}, glass, {}).first().name, QPointF(-59, -6.5));
        placer.place({}, glass, {});
        QCOMPARE(*placer.place({symbol("CES1", {1, 0}, 1)}, glass, {}).first().name, QPointF(11, -6.5));
    }

    void smallMovementsChangeNothing()
    {
        for (unsigned seed = 0; seed < 10; ++seed) {
            LabelPlacer placer;
            const QList<PlotSymbol> rest = crowd(60, seed);
            QList<PlotLabel> before;
            std::mt19937 random(seed);
            int changes = 0;
            for (int round = 0; round < 200; ++round) {
                QList<PlotSymbol> moved = rest;
                for (PlotSymbol &one : moved)
                    one.at += QPointF(int(random() % 9) - 4, int(random() % 9) - 4) / 16;
                const QList<PlotLabel> labels = placer.place(moved, glass, {});
                QCOMPARE(faults(moved, labels), QString());
                for (qsizetype i = 0; round >= 20 && i < labels.size(); ++i)
                    changes += labels.at(i) == before.at(i) ? 0 : 1;
                before = labels;
            }
            // 10,800 labels are placed after those first ones, by then where the trembling doesn't reach them.
            QVERIFY2(changes <= 20, qPrintable(QString::number(changes)));
        }
    }

    void aTurnMovesFewLabels()
    {
        LabelPlacer placer;
        const QList<PlotSymbol> rest = crowd(60, 1);
        QList<PlotLabel> before;
        int changes = 0;
        for (int degree = 0; degree < 360; ++degree) {
            QList<PlotSymbol> moved = rest;
            const double angle = degree * std::numbers::pi / 180;
            for (PlotSymbol &one : moved)
                one.at = {one.at.x() * std::cos(angle) - one.at.y() * std::sin(angle),
                          one.at.x() * std::sin(angle) + one.at.y() * std::cos(angle)};
            const QList<PlotLabel> labels = placer.place(moved, glass, {});
            QCOMPARE(faults(moved, labels), QString());
            for (qsizetype i = 0; degree > 0 && i < labels.size(); ++i)
                changes += labels.at(i).name.has_value() == before.at(i).name.has_value() ? 0 : 1;
            before = labels;
        }
        QVERIFY2(changes < 60 * 360 / 20, qPrintable(QString::number(changes)));
    }

    void theSameAlwaysComesOut()
    {
        LabelPlacer one;
        LabelPlacer other;
        for (unsigned seed = 0; seed < 20; ++seed) {
            const QList<PlotSymbol> symbols = crowd(50, seed);
            const QList<PlotLabel> labels = one.place(symbols, glass, {});
            QList<PlotSymbol> reversed(symbols.crbegin(), symbols.crend()); // all distances differ
            QList<PlotLabel> back = other.place(reversed, glass, {});
            std::reverse(back.begin(), back.end());
            QCOMPARE(back, labels);
        }
    }

    void nonsenseIsNotLabelled_data()
    {
        columns<QPointF, double, QSizeF, bool>("at", "distance", "text", "shown");
        QTest::newRow("ordinary") << QPointF(9, 9) << 1.0 << nameSize << true;
        QTest::newRow("nowhere across") << QPointF(notANumber, 0) << 1.0 << nameSize << false;
        QTest::newRow("nowhere down") << QPointF(0, notANumber) << 1.0 << nameSize << false;
        QTest::newRow("infinitely right") << QPointF(infinite, 0) << 1.0 << nameSize << false;
        QTest::newRow("infinitely up") << QPointF(0, -infinite) << 1.0 << nameSize << false;
        QTest::newRow("very far") << QPointF(1e308, -1e308) << 1.0 << nameSize << false;
        QTest::newRow("distance not a number") << QPointF(9, 9) << notANumber << nameSize << true;
        QTest::newRow("distance infinite") << QPointF(9, 9) << infinite << nameSize << true;
        QTest::newRow("distance below zero") << QPointF(9, 9) << -3.0 << nameSize << true;
        QTest::newRow("no text") << QPointF(9, 9) << 1.0 << QSizeF() << false;
        QTest::newRow("text of no width") << QPointF(9, 9) << 1.0 << QSizeF(0, 13) << false;
        QTest::newRow("text of less than none") << QPointF(9, 9) << 1.0 << QSizeF(-40, 13) << false;
        QTest::newRow("width not a number") << QPointF(9, 9) << 1.0 << QSizeF(notANumber, 13) << false;
        QTest::newRow("height not a number") << QPointF(9, 9) << 1.0 << QSizeF(40, notANumber) << false;
        QTest::newRow("height infinite") << QPointF(9, 9) << 1.0 << QSizeF(40, infinite) << false;
        QTest::newRow("taller than the glass") << QPointF(9, 9) << 1.0 << QSizeF(40, 1e6) << false;
        QTest::newRow("10,000 letters wide") << QPointF(9, 9) << 1.0 << QSizeF(80'000, 13) << true;
        QTest::newRow("infinitely wide") << QPointF(9, 9) << 1.0 << QSizeF(infinite, 13) << true;
    }

    void nonsenseIsNotLabelled()
    {
        QFETCH(QPointF, at);
        QFETCH(double, distance);
        QFETCH(QSizeF, text);
        QFETCH(bool, shown);
        LabelPlacer placer;
        const PlotSymbol odd{QString(10'000, u'W'), at, distance, text, text, false};
        const PlotSymbol sane = symbol("CES1", {-80, 0}, 2);
        for (int round = 0; round < 2; ++round) { // the second time it may have been there before
            const QList<PlotLabel> labels = placer.place({odd, sane}, glass, {});
            QCOMPARE(labels.size(), 2);
            QCOMPARE(bool(labels.at(0).name), shown);
            QVERIFY(labels.at(1).name);
            if (shown)
                QVERIFY(glass.contains(nameBox(odd, labels.at(0))));
        }
    }

    void aGlassWithoutRoomHasNoLabels_data()
    {
        QTest::addColumn<QRectF>("area");
        QTest::newRow("none") << QRectF();
        QTest::newRow("inside out") << QRectF(100, 100, -200, -200);
        QTest::newRow("not a number") << QRectF(notANumber, 0, 10, 10);
        QTest::newRow("too small") << QRectF(-20, -20, 40, 40);
    }

    void aGlassWithoutRoomHasNoLabels()
    {
        QFETCH(QRectF, area);
        LabelPlacer placer;
        QCOMPARE(named(placer.place(crowd(20, 3), area, {})), 0);
        QVERIFY(named(placer.place(crowd(20, 3), glass, {{notANumber, 0, 10, 10}, QRectF()})) > 0);
    }

    void hundredsAtOnePoint()
    {
        QList<PlotSymbol> symbols;
        for (int i = 0; i < 500; ++i)
            symbols << PlotSymbol{u"CES"_qs, {30, 30}, 1, nameSize, altitudeSize, i % 2 == 0};
        LabelPlacer placer;
        for (int round = 0; round < 3; ++round) {
            const QList<PlotLabel> labels = placer.place(symbols, glass, {});
            QCOMPARE(faults(symbols, labels), QString());
            QVERIFY(named(labels) >= 1 && named(labels) <= 20);
        }
    }
};

TARVO_TEST(LabelPlacerTest)
#include "LabelPlacerTest.moc"
