// One X-Plane reply with all 53 values: what it costs to read and apply it, against only copying its records out; and
// what share of a core a simulator costs that sends every value at its subscribed rate.
#include "simulator/xplane/DatarefTable.h"
#include "simulator/xplane/RrefPacket.h"

#include <benchmark/benchmark.h>

#include <QHostAddress>
#include <QUdpSocket>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

using namespace tarvo::simulator::xplane;

namespace {

constexpr qsizetype headerSize = 5;
constexpr qsizetype recordSize = 8;

/// A reply that holds the values `first` to `last`, without `last`.
QByteArray replyWith(size_t first, size_t last)
{
    QByteArray reply("RREF,");
    for (size_t id = first; id < last; ++id) {
        std::array<char, recordSize> record{};
        qToLittleEndian(static_cast<quint32>(id), record.data());
        qToLittleEndian(static_cast<float>(id % 7), record.data() + 4);
        reply.append(record.data(), recordSize);
    }
    return reply;
}

void apply(DatarefSample &sample, QByteArrayView bytes)
{
    const RrefReply reply(bytes);
    if (!reply.isValid())
        return;
    for (qsizetype i = 0; i < reply.count(); ++i) {
        const RrefRecord record = reply.record(i);
        applyDataref(sample, record.id, record.value);
    }
}

/// Only takes the records out of the bytes.
void readOnly(std::array<RrefRecord, 53> &records, QByteArrayView bytes)
{
    const qsizetype count = std::min<qsizetype>((bytes.size() - headerSize) / recordSize, 53);
    for (qsizetype i = 0; i < count; ++i)
        std::memcpy(&records[static_cast<size_t>(i)], bytes.data() + headerSize + i * recordSize, recordSize);
}

/// Values handled per second.
benchmark::Counter valuesRate(double perIteration)
{
    return {perIteration, benchmark::Counter::kIsIterationInvariantRate};
}

void ReadRecords(benchmark::State &state)
{
    const QByteArray reply = replyWith(0, 53);
    std::array<RrefRecord, 53> records;
    for (auto _ : state) {
        readOnly(records, reply);
        benchmark::DoNotOptimize(records);
        benchmark::ClobberMemory();
    }
    state.counters["values"] = valuesRate(53);
}
BENCHMARK(ReadRecords);

void DecodeAndApply(benchmark::State &state)
{
    const QByteArray reply = replyWith(0, 53);
    DatarefSample sample;
    for (auto _ : state) {
        apply(sample, reply);
        benchmark::DoNotOptimize(sample);
        benchmark::ClobberMemory();
    }
    state.counters["values"] = valuesRate(53);
}
BENCHMARK(DecodeAndApply);

/// One value in a datagram of its own, through the loopback interface and back out of the socket.
void DatagramOfOneValue(benchmark::State &state)
{
    QUdpSocket simulator;
    QUdpSocket client;
    client.bind(QHostAddress(QHostAddress::LocalHost), 0);
    const QByteArray reply = replyWith(18, 19);
    std::array<char, 65536> buffer;
    DatarefSample sample;
    for (auto _ : state) {
        simulator.writeDatagram(reply, QHostAddress(QHostAddress::LocalHost), client.localPort());
        QHostAddress sender;
        const qint64 size = client.readDatagram(buffer.data(), buffer.size(), &sender);
        apply(sample, QByteArrayView(buffer.data(), std::max<qint64>(size, 0)));
        benchmark::DoNotOptimize(sample);
    }
    state.counters["values"] = valuesRate(1);
}
BENCHMARK(DatagramOfOneValue);

/// Prints the measurements as usual and keeps them, for the ratios between them: processor time, in nanoseconds.
class RatioReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (!run.error_occurred && run.run_type == Run::RT_Iteration)
                m_nanoseconds[run.benchmark_name()] = run.GetAdjustedCPUTime();
        }
    }

    void printRatios() const
    {
        const double reading = measured("ReadRecords");
        const double applying = measured("DecodeAndApply");
        const double datagram = measured("DatagramOfOneValue");
        int valuesPerSecond = 0;
        for (const Dataref &row : datarefs())
            valuesPerSecond += row.rateHz;
        if (reading > 0 && applying > 0)
            std::printf("all 53 values, decoding and applying against only reading: ratio %.1f\n", applying / reading);
        if (datagram > 0)
            std::printf("%d values a second, each in a datagram of its own (sending included): %.3f%% of one core\n",
                        valuesPerSecond, valuesPerSecond * datagram / 1e9 * 100);
        if (applying > 0)
            std::printf("the same values, decoding and applying alone: %.5f%% of one core\n",
                        valuesPerSecond * applying / 53 / 1e9 * 100);
    }

private:
    /// 0 for one that was not run.
    double measured(const char *name) const
    {
        const auto found = m_nanoseconds.find(name);
        return found == m_nanoseconds.end() ? 0 : found->second;
    }

    std::map<std::string, double> m_nanoseconds;
};

} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatios();
    return 0;
}
