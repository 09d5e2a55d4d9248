// What it costs to find room for the labels of the traffic plot, asked as its page asks: once a sample while the own
// aircraft turns. 60 contacts are meant to stay below a tenth of a millisecond.
#include "ui/viewmodel/PlotLabels.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <numbers>

using tarvo::ui::PlotLabels;

namespace {

/// Half of them at the stands around the own aircraft, the others spread over the plot.
QList<qreal> figures(int count, double heading)
{
    QList<qreal> found;
    for (int i = 0; i < count; ++i) {
        const double angle = 2.4 * i - heading * std::numbers::pi / 180;
        const double away = i % 2 == 0 ? 2 + 40.0 * i / count : 150.0 * i / count;
        found << away * std::sin(angle) << -away * std::cos(angle) << away << 48 << 22 << i % 3;
    }
    return found;
}

void placeLabels(benchmark::State &state)
{
    const int count = static_cast<int>(state.range(0));
    const double turn = static_cast<double>(state.range(1)) / 10; // degrees a sample
    QStringList callsigns;
    for (int i = 0; i < count; ++i)
        callsigns << QStringLiteral("CES%1").arg(2352 + i);
    QVariantList taken;
    for (int i = 0; i < 18; ++i)
        taken << QRectF(134 * std::sin(i * 0.52) - 6, 134 * std::cos(i * 0.52) - 6, 12, 12);
    QList<QList<qreal>> samples;
    for (int i = 0; i < 3600; ++i)
        samples << figures(count, i * turn);
    PlotLabels labels;
    qsizetype sample = 0;
    for (auto _ : state) {
        const QList<qreal> &now = samples.at(sample++ % samples.size());
        benchmark::DoNotOptimize(labels.place(callsigns, now, 13, QRectF(-217, -170, 434, 332), taken));
    }
    state.SetItemsProcessed(state.iterations() * count);
}

} // namespace

BENCHMARK(placeLabels)->ArgNames({"contacts", "turn"})->ArgsProduct({{20, 60, 200}, {0, 1, 30}});

BENCHMARK_MAIN();
