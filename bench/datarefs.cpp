// One X-Plane reply with all 53 values: what it costs to read and apply it, against only copying its records out; and
// what share of a core a simulator costs that sends every value at its subscribed rate.
#include "simulator/xplane/DatarefTable.h"
#include "simulator/xplane/RrefPacket.h"

#include <benchmark/benchmark.h>

#include <QHostAddress>
#include <QUdpSocket>
#include <QtEndian>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>

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

void ReadRecords(benchmark::State &state)
{
    const QByteArray reply = replyWith(0, 53);
    std::array<RrefRecord, 53> records;
    for (auto _ : state) {
        readOnly(records, reply);
        benchmark::DoNotOptimize(records);
        benchmark::ClobberMemory();
    }
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
}
BENCHMARK(DatagramOfOneValue);

/// Nanoseconds for one call, best of several rounds.
template <class Work>
double nanoseconds(Work work, int calls)
{
    double best = 0;
    for (int round = 0; round < 7; ++round) {
        const auto begin = std::chrono::steady_clock::now();
        for (int i = 0; i < calls; ++i)
            work();
        const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - begin;
        if (round == 0 || taken.count() / calls < best)
            best = taken.count() / calls;
    }
    return best;
}

void printRatios()
{
    const QByteArray reply = replyWith(0, 53);
    std::array<RrefRecord, 53> records;
    DatarefSample sample;
    const double reading = nanoseconds(
        [&] {
            readOnly(records, reply);
            benchmark::DoNotOptimize(records);
            benchmark::ClobberMemory();
        },
        100'000);
    const double applying = nanoseconds(
        [&] {
            apply(sample, reply);
            benchmark::DoNotOptimize(sample);
            benchmark::ClobberMemory();
        },
        100'000);
    int valuesPerSecond = 0;
    for (const Dataref &row : datarefs())
        valuesPerSecond += row.rateHz;

    QUdpSocket simulator;
    QUdpSocket client;
    client.bind(QHostAddress(QHostAddress::LocalHost), 0);
    const QByteArray one = replyWith(18, 19);
    std::array<char, 65536> buffer;
    const double datagram = nanoseconds(
        [&] {
            simulator.writeDatagram(one, QHostAddress(QHostAddress::LocalHost), client.localPort());
            QHostAddress sender;
            const qint64 size = client.readDatagram(buffer.data(), buffer.size(), &sender);
            apply(sample, QByteArrayView(buffer.data(), std::max<qint64>(size, 0)));
        },
        5'000);

    std::printf("all 53 values: %.0f ns to decode and apply, %.0f ns only to read; ratio %.1f\n", applying, reading,
                applying / reading);
    std::printf("%d values a second, each in a datagram of its own (sending included): %.3f%% of one core\n",
                valuesPerSecond, valuesPerSecond * datagram / 1e9 * 100);
    std::printf("the same values, decoding and applying alone: %.5f%% of one core\n",
                valuesPerSecond * applying / 53 / 1e9 * 100);
}

} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    printRatios();
    return 0;
}
