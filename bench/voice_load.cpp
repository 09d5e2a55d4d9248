// What the voice session costs on a real sound server, with real sockets and codec; what of a speaker is heard, and how
// late. The client runs in a process of its own; this one plays the voice server and all who speak. Beside it another
// only keeps the same devices open: PortAudio's and the sound server's threads take more than a silent session may, so
// the budgets are for what the client adds. Gives 1 when one of them is not kept.
//
// voice_load [--seconds 20] [--busy] [--only ROW]     seconds: of each row. busy: with as many busy loops as cores
#include "practice/account/AccountBook.h"
#include "practice/account/TokenAuthority.h"
#include "practice/voice/Speech.h"
#include "practice/voice/Transmission.h"
#include "practice/voice/VoiceServer.h"
#include "support/SoundServer.h"
#include "traffic/BusyLoops.h"
#include "traffic/ProcessCost.h"
#include "voice/Clicks.h"
#include "voice/VoiceUnderTest.h"
#include "voice/codec/AudioStreamConfig.h"
#include "voice/codec/CodecFormat.h"
#include "voice/codec/OpusEncoder.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QProcess>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

using namespace tarvo;

namespace {

constexpr quint32 heardFrequency = 124'000; ///< kHz
constexpr qint64 pilot = 1001;              ///< the CID of him who is measured
constexpr qint64 otherPilot = 1002;         ///< of one who speaks into his microphone
constexpr int settleMs = 3'000;
constexpr int lastClickMs = 1'000; ///< until the last of them is heard
constexpr int longestStartMs = 20'000;
constexpr std::size_t clickPeriod = 53; ///< frames

/// A row of the table. Speakers beyond the first share their frequencies in turn.
struct Row
{
    const char *name;
    int speakers;
    int frequencies;
    std::optional<double> budget; ///< percent of a core, beside the devices
};

constexpr Row rows[] = {
    {"ready and silent", 0, 1, 0.5},
    {"one speaker", 1, 1, 3.0},
    {"one of 40 speakers heard", 40, 40, 3.0},
    {"8 speakers at once", 8, 1, std::nullopt},
    {"40 speakers at once", 40, 1, std::nullopt},
};

struct Wish
{
    double seconds;
    QString only; ///< rows that hold this in their names; empty: all
    bool busy;
};

double now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void pass(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

/// Ten ms of 1000 Hz and a second of silence, over and over again. The first frame clicks.
practice::Speech clicks()
{
    voice::OpusEncoder encoder(voice::AudioStreamConfig{});
    practice::SpeechFrames frames;
    for (std::size_t number = 0; number < clickPeriod; ++number) {
        std::vector<std::int16_t> frame(voice::codecFrameSize);
        for (std::size_t i = 0; number == 0 && i < frame.size() / 2; ++i)
            frame[i] = static_cast<std::int16_t>(
                16000 * std::sin(2 * std::numbers::pi * 1000 * static_cast<double>(i) / voice::codecSampleRate));
        frames.push_back(encoder.encode(frame.data(), voice::codecFrameSize));
    }
    return std::make_shared<const practice::SpeechFrames>(std::move(frames));
}

/// The voice server, and those who speak there. The first clicks; the others say a phrase over and over again.
class Speakers
{
public:
    Speakers() : m_server(m_accounts, m_tokens, [](qint64) { return QString(); })
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { step(); });
    }

    bool listen() { return m_server.listen(QHostAddress(QHostAddress::LocalHost), 0, 0); }
    QStringList clientWords(qint64 cid = pilot)
    {
        return {QStringLiteral("client"),
                QString::number(m_server.tcpPort()),
                QString::number(m_server.udpPort()),
                QString::number(heardFrequency),
                QString::number(m_accounts.find(cid)->user.id),
                QString::fromLatin1(m_tokens.issue(practice::TokenUse::Access, cid))};
    }
    void start(const Row &row)
    {
        constexpr int channelWidth = 25;
        const qint64 start = common::systemClock().steadyMs();
        for (int i = 0; i < row.speakers; ++i) {
            const int kHz = static_cast<int>(heardFrequency) + i % row.frequencies * channelWidth;
            m_speakers
                .emplace_back("CSN" + std::to_string(7000 + i), kHz,
                              i == 0 ? clicks() : m_phrases.find(QStringLiteral("pilot-call")),
                              start + i * practice::Transmission::frameMs / row.speakers)
                .loop(0);
        }
        m_timer.start(1);
    }
    void stop()
    {
        m_timer.stop();
        m_speakers.clear();
    }
    /// Since the last call.
    std::vector<double> takeClicks() { return std::exchange(m_clicks, {}); }

private:
    void step()
    {
        const qint64 time = common::systemClock().steadyMs();
        for (practice::Transmission &speaker : m_speakers) {
            while (const auto packet = speaker.takeDue(time)) {
                if (&speaker == &m_speakers.front() && packet->payload == m_click->front())
                    m_clicks.push_back(now());
                m_server.say(*packet);
            }
        }
    }

    practice::AccountBook m_accounts;
    practice::TokenAuthority m_tokens;
    practice::VoiceServer m_server;
    practice::SpeechBook m_phrases;
    practice::Speech m_click = clicks();
    std::vector<practice::Transmission> m_speakers;
    std::vector<double> m_clicks;
    QTimer m_timer;
};

/// This program again in another role.
class Role
{
public:
    explicit Role(const QStringList &words)
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QCoreApplication::applicationFilePath(), words);
    }
    ~Role() { end(); }
    Role(const Role &) = delete;
    Role &operator=(const Role &) = delete;

    bool waitUntilReady()
    {
        const QDeadlineTimer deadline(longestStartMs);
        while (!m_said.contains("ready\n") && !deadline.hasExpired()) {
            pass(20);
            m_said += m_process.readAllStandardOutput();
        }
        return m_said.contains("ready\n");
    }
    double cpuSeconds() const { return bench::costOf(m_process.processId()).cpuSeconds; }
    /// What it said from its start to its end.
    QByteArray end()
    {
        m_process.closeWriteChannel();
        if (!m_process.waitForFinished(10'000))
            m_process.kill();
        m_process.waitForFinished();
        return m_said += m_process.readAllStandardOutput();
    }

private:
    QProcess m_process;
    QByteArray m_said;
};

/// In percent of a core.
struct Shares
{
    double client = 0;
    double devices = 0;
};

Shares sharesDuring(double seconds, const Role &client, const Role &devices)
{
    const Shares before{client.cpuSeconds(), devices.cpuSeconds()};
    const double start = now();
    pass(static_cast<int>(seconds * 1000));
    const double percent = 100 / (now() - start);
    return {percent * (client.cpuSeconds() - before.client), percent * (devices.cpuSeconds() - before.devices)};
}

void tellSound(const std::vector<bench::Delay> &found, std::size_t said)
{
    std::printf("    %zu of %zu clicks heard", found.size(), said);
    if (!found.empty()) {
        const bench::DelayFigures ms = bench::figuresOf(found);
        std::printf(" after %.1f ms at least, %.1f ms median, %.1f ms 99 %%; slope %.2f ms a minute", ms.least,
                    ms.median, ms.most99, ms.slopePerMinute);
    }
    std::printf("\n");
}

/// False when its budget is not kept.
bool tellCost(const Row &row, const Shares &shares, bool busy)
{
    const double own = std::max(shares.client - shares.devices, 0.0);
    std::printf("%-26s %5.2f %% of a core, %.2f times the devices' %.2f; own %.2f", row.name, shares.client,
                shares.client / shares.devices, shares.devices, own);
    const std::optional<double> budget = busy ? std::nullopt : row.budget;
    if (budget)
        std::printf(" of %.1f: ratio %.2f (with the devices %.2f)", *budget, own / *budget, shares.client / *budget);
    std::printf("\n");
    return !budget || own <= *budget;
}

/// What the client's streams say at their end.
void tellStreams(QByteArray said)
{
    for (const QByteArray &line : said.replace("ready\n", "").trimmed().split('\n'))
        std::printf("    %s\n", line.constData());
}

/// False when it doesn't run, or its budget is not kept.
bool measure(const test::SoundServer &server, Speakers &speakers, const Role &devices, const Row &row, const Wish &wish)
{
    Role client(speakers.clientWords());
    if (!client.waitUntilReady()) {
        std::printf("%s: the client isn't ready\n", row.name);
        return false;
    }
    test::SoundRecorder ear(server, "spk_a");
    QTimer reading;
    QObject::connect(&reading, &QTimer::timeout, &reading, [&ear] { ear.samples(); });
    reading.start(1);
    speakers.start(row);
    pass(settleMs);
    speakers.takeClicks();
    const Shares shares = sharesDuring(wish.seconds, client, devices);
    const std::vector<double> said = speakers.takeClicks();
    pass(lastClickMs);
    speakers.stop();
    const bool isKept = tellCost(row, shares, wish.busy);
    const bool isHeardWell = row.speakers > 0 && row.speakers == row.frequencies; // all others are a conflict
    if (isHeardWell)
        tellSound(bench::delays(said, bench::clickTimes(ear)), said.size());
    tellStreams(client.end());
    return isKept;
}

/// Of the first stream that begins its words so, in ms.
double latencyOf(const QByteArray &said, const QByteArray &stream)
{
    const QByteArray words = stream + ": latency ";
    const qsizetype at = said.indexOf(words);
    return at < 0 ? 0 : said.mid(at + words.size()).split(' ').first().toDouble();
}

/// One pilot's microphone, the voice server, another pilot's headphone. False when it takes too long.
bool measureMouthToEar(const test::SoundServer &server, Speakers &speakers, const Wish &wish)
{
    Role listener(speakers.clientWords());
    Role talker(speakers.clientWords(otherPilot) + QStringList{QStringLiteral("talk")});
    if (!listener.waitUntilReady() || !talker.waitUntilReady())
        return false;
    pass(settleMs);
    test::SoundRecorder mouth(server, "micbus");
    test::SoundRecorder ear(server, "spk_a");
    QTimer reading;
    QObject::connect(&reading, &QTimer::timeout, &reading, [&] {
        mouth.samples();
        ear.samples();
    });
    reading.start(1);
    const test::SoundPlayer player(server, bench::clicks(wish.seconds));
    pass(static_cast<int>(wish.seconds * 1000) + lastClickMs);
    const std::vector<double> said = bench::clickTimes(mouth);
    const std::vector<bench::Delay> found = bench::delays(said, bench::clickTimes(ear));
    const double budget = latencyOf(talker.end(), "InputAudioStream") +
                          latencyOf(listener.end(), "MixedOutputAudioStream") + bench::delayAllowanceMs;
    const double median = found.empty() ? 0 : bench::figuresOf(found).median;
    std::printf("microphone to another pilot's headphone: budget %.1f ms: ratio %.2f\n", budget, median / budget);
    tellSound(found, said.size());
    return !found.empty() && median <= budget;
}

int measureAll(const Wish &wish)
{
    test::SoundServer server;
    Speakers speakers;
    if (!server.start() || !speakers.listen()) {
        std::printf("the servers don't start\n");
        return 1;
    }
    Role devices({QStringLiteral("devices")});
    if (!devices.waitUntilReady()) {
        std::printf("the devices can't be opened\n");
        return 1;
    }
    bool good = true;
    for (const Row &row : rows) {
        if (wish.only.isEmpty() || QLatin1StringView(row.name).contains(wish.only))
            good = measure(server, speakers, devices, row, wish) && good;
        std::fflush(stdout);
    }
    if (wish.only.isEmpty() || QLatin1StringView("microphone").contains(wish.only))
        good = measureMouthToEar(server, speakers, wish) && good;
    return good ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc == 2 && QByteArray(argv[1]) == "spin")
        bench::runBusyLoop();
    const QCoreApplication app(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    if (words.value(1) == QLatin1StringView("devices"))
        return bench::runOpenDevices();
    if (words.value(1) == QLatin1StringView("client"))
        return bench::runVoiceClient(words.mid(2));
    QCommandLineParser parser;
    const QCommandLineOption seconds(QStringLiteral("seconds"), {}, QStringLiteral("N"), QStringLiteral("20"));
    const QCommandLineOption busy(QStringLiteral("busy"));
    const QCommandLineOption only(QStringLiteral("only"), {}, QStringLiteral("row"));
    parser.addOptions({seconds, busy, only});
    parser.process(app);
    std::optional<bench::BusyLoops> loops;
    if (parser.isSet(busy))
        loops.emplace(static_cast<int>(std::thread::hardware_concurrency()));
    return measureAll({parser.value(seconds).toDouble(), parser.value(only), parser.isSet(busy)});
}
