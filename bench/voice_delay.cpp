// Mouth to ear through the audio engine: a click in a virtual microphone, through gate, encoder, decoder and mixer, to
// a null sink. It may take the devices' buffers, one frame of 20 ms and 25 ms more, and must not grow.
//
// usage: voice_delay [--seconds N] [--busy]     N: 120. busy: with as many busy loops as there are cores
#include "AppConfig.h"
#include "support/SoundServer.h"
#include "traffic/BusyLoops.h"
#include "voice/Clicks.h"
#include "voice/engine/AudioHandler.h"
#include "voice/engine/SoundThread.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <optional>
#include <thread>
#include <vector>

using namespace tarvo;

namespace {

double deviceLatency = 0; // seconds, of the opened devices together, as the log tells

void readLog(QtMsgType, const QMessageLogContext &, const QString &text)
{
    const QString word = QStringLiteral("latency ");
    if (const qsizetype at = text.indexOf(word); at >= 0)
        deviceLatency += text.mid(at + word.size()).section(QLatin1Char(' '), 0, 0).toDouble() / 1000;
    if (text.contains(QLatin1String("late")))
        std::printf("%s\n", qPrintable(text));
}

int tell(const std::vector<bench::Delay> &found, std::size_t said)
{
    if (found.empty()) {
        std::printf("no click was heard\n");
        return 1;
    }
    const bench::DelayFigures ms = bench::figuresOf(found);
    const double budget = deviceLatency * 1000 + bench::delayAllowanceMs;
    std::printf("%zu of %zu clicks heard\n", found.size(), said);
    std::printf("delay: least %.1f ms, median %.1f ms, 99 %% %.1f ms; slope %.2f ms a minute\n", ms.least, ms.median,
                ms.most99, ms.slopePerMinute);
    std::printf("budget %.1f ms (devices %.1f ms + 20 + 25): median is %.2f of it, 99 %% is %.2f of it\n", budget,
                deviceLatency * 1000, ms.median / budget, ms.most99 / budget);
    const bool isHeard = found.size() * 10 >= said * 9; // what was lost has no delay
    return ms.median > budget || !isHeard ? 1 : 0;
}

int measure(double seconds)
{
    test::SoundServer server;
    if (!server.start()) {
        std::printf("PulseAudio doesn't start\n");
        return 1;
    }
    const QTemporaryDir folder;
    AppConfig config(folder.path());
    std::optional<voice::AudioHandler> audio;
    const auto sound = std::make_shared<voice::SoundThread>();
    audio.emplace(config, sound);
    audio->setInputDevice(-1);
    audio->setHeadphoneDevice(-1);
    audio->setPttActive(true);
    audio->startMicTest(false);
    test::SoundRecorder mouth(server, "micbus");
    test::SoundRecorder ear(server, "spk_a");
    const test::SoundPlayer player(server, bench::clicks(seconds));
    QTimer reading;
    QObject::connect(&reading, &QTimer::timeout, &reading, [&] {
        mouth.samples();
        ear.samples();
    });
    reading.start(1);
    QTimer::singleShot(static_cast<int>(seconds * 1000), qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
    const std::vector<double> said = bench::clickTimes(mouth);
    const std::vector<bench::Delay> found = bench::delays(said, bench::clickTimes(ear));
    audio.reset();
    sound->waitUntilIdle(std::chrono::seconds(5));
    return tell(found, said.size());
}

} // namespace

int main(int argc, char **argv)
{
    if (argc == 2 && QByteArray(argv[1]) == "spin")
        bench::runBusyLoop();
    const QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    const QCommandLineOption seconds(QStringLiteral("seconds"), {}, QStringLiteral("N"), QStringLiteral("120"));
    const QCommandLineOption busy(QStringLiteral("busy"));
    parser.addOptions({seconds, busy});
    parser.process(app);
    qInstallMessageHandler(&readLog);
    std::optional<bench::BusyLoops> loops;
    if (parser.isSet(busy))
        loops.emplace(static_cast<int>(std::thread::hardware_concurrency()));
    return measure(parser.value(seconds).toDouble());
}
