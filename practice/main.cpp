#include "practice/Console.h"
#include "practice/Options.h"
#include "practice/StopSignal.h"
#include "practice/control/ControlService.h"
#include "practice/control/ScriptPlayer.h"
#include "practice/replay/Recording.h"

#include <QCoreApplication>
#include <QFile>

using namespace tarvo::practice;

namespace {

bool loadReplay(const QString &path, Recording &recording)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const std::optional<Recording> read = readRecording(QString::fromUtf8(file.readAll()));
    recording = read.value_or(Recording());
    return read.has_value();
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    QTextStream errors(stderr);
    QString error;
    std::optional<Options> options = readOptions(QCoreApplication::arguments(), &error);
    if (!options) {
        errors << "tarvo-practice: " << error << '\n';
        return 1;
    }
    if (!options->information.isEmpty()) {
        out << options->information;
        return 0;
    }

    if (!options->replay.isEmpty() && !loadReplay(options->replay, options->network.replay.recording)) {
        errors << "tarvo-practice: " << options->replay << " is no network log\n";
        return 1;
    }
    PracticeNetwork network(options->network);
    const ControlService control(network);
    network.tokens().setLife(TokenUse::Access, options->accessLife);
    network.tokens().setLife(TokenUse::Refresh, options->refreshLife);
    network.tokens().setLife(TokenUse::Fsd, options->fsdLife);
    network.xplane().setFlightTime(options->flightTime);
    ScriptPlayer player(network);
    if (!options->script.isEmpty() && !player.loadFile(options->script)) {
        errors << "tarvo-practice: " << player.error() << '\n';
        return 1;
    }
    const StopSignal stop;
    QObject::connect(&stop, &StopSignal::raised, &app, &QCoreApplication::quit);
    if (!network.start()) {
        errors << "tarvo-practice: " << network.errorString() << '\n';
        return 1;
    }

    Console console(out);
    console.announce(network);
    if (!options->quiet)
        console.follow(network);
    console.follow(player);
    console.say(QStringLiteral("ready"), QStringLiteral("stop with Ctrl+C"));
    const int result = QCoreApplication::exec();
    network.stop();
    console.say(QStringLiteral("stopped"), QString());
    return result;
}
