// From the start of the process to the first picture of its window: the client against an empty widget program. The two
// run in turn, so that both see the same machine; the medians are compared. Budget: a ratio of 2.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QStringList>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr int rounds = 15;

/// Wall time of one run in milliseconds; negative when the program could not be run.
double run(const QString &program)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (!environment.contains(QStringLiteral("DISPLAY")) && !environment.contains(QStringLiteral("QT_QPA_PLATFORM")))
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QElapsedTimer timer;
    timer.start();
    process.start(program, {});
    const bool ended = process.waitForFinished(30000) && process.exitCode() == 0;
    return ended ? static_cast<double>(timer.nsecsElapsed()) / 1e6 : -1;
}

double median(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication toolkit(argc, argv);
    const QString folder = QCoreApplication::applicationDirPath();
    const QString programs[] = {folder + QStringLiteral("/startup_empty"), folder + QStringLiteral("/startup_client")};
    std::vector<double> times[2];
    for (int round = 0; round <= rounds; ++round) {
        for (int which : {0, 1}) {
            const double time = run(programs[which]);
            if (time < 0) {
                std::fprintf(stderr, "%s did not run\n", qPrintable(programs[which]));
                return 1;
            }
            if (round > 0) // the first round fills the machine's caches
                times[which].push_back(time);
        }
    }
    const double empty = median(times[0]);
    const double client = median(times[1]);
    std::printf("empty widget program %.1f ms, login window %.1f ms (medians of %d): ratio %.2f, budget 2\n", empty,
                client, rounds, client / empty);
    return 0;
}
