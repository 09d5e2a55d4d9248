// One fast position from bytes to signal, against only splitting the same line. Budget: a ratio of 4.
#include "fsd/FsdClient.h"
#include "fsd/pdu/FastPilotPosition.h"

#include <QByteArray>
#include <QString>

#include <benchmark/benchmark.h>

#include <chrono>

namespace {

using Clock = std::chrono::steady_clock;
using tarvo::fsd::FsdClient;

constexpr int batch = 1000; ///< lines between two looks at the clock

const QByteArray line =
    "^CES2301:40.080111:116.584556:1150.25:1035.50:4261561312:77.1234:-1.5000:0.2500:0.0100:-0.0200:"
    "0.0300:12.50\r\n";

template <class Action>
double secondsOf(Action action)
{
    const auto start = Clock::now();
    for (int i = 0; i < batch; ++i)
        action();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

void fastPosition(benchmark::State &state)
{
    FsdClient client;
    double latitudes = 0;
    QObject::connect(&client, &FsdClient::raiseFastPilotPositionReceived, &client,
                     [&latitudes](const tarvo::fsd::pdu::FastPilotPosition &pdu) { latitudes += pdu.latitude; });
    const QString text = QString::fromLatin1(line.chopped(2));

    double receiving = 0;
    double splitting = 0;
    for ([[maybe_unused]] auto _ : state) {
        receiving += secondsOf([&] { client.receive(line); });
        splitting += secondsOf([&] { benchmark::DoNotOptimize(text.split(QLatin1Char(':'))); });
    }
    benchmark::DoNotOptimize(latitudes);

    const double lines = static_cast<double>(state.iterations()) * batch;
    state.counters["receive_ns"] = receiving / lines * 1e9;
    state.counters["split_ns"] = splitting / lines * 1e9;
    state.counters["ratio"] = receiving / splitting;
}

BENCHMARK(fastPosition)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
