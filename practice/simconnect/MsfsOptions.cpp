#include "practice/simconnect/MsfsOptions.h"

#include "practice/simconnect/MsfsStandIn.h"

#include <QStringList>

#include <cmath>
#include <cstdio>
#include <memory>

namespace tarvo::practice {

namespace {
using Mode = CreateAnswering::Mode;

bool readCreating(const QString &word, CreateAnswering &creating)
{
    bool isNumber = true;
    if (word == QLatin1StringView("never"))
        creating.mode = Mode::Never;
    else if (word == QLatin1StringView("fail"))
        creating.mode = Mode::Fail;
    else
        creating = {.mode = Mode::Late, .delayMs = word.toInt(&isNumber)};
    return isNumber && creating.delayMs >= 0;
}

bool readWord(const QString &word, MsfsOptions &options)
{
    const QString value = word.section(u'=', 1);
    if (word == QLatin1StringView("2020") || word == QLatin1StringView("2024")) {
        options.is2024 = word == QLatin1StringView("2024");
        return true;
    }
    if (word == QLatin1StringView("refuse"))
        return options.refuse = true;
    if (word.startsWith(QLatin1StringView("create=")))
        return readCreating(value, options.creating);
    if (word.startsWith(QLatin1StringView("log="))) {
        options.log = value;
        return !value.isEmpty();
    }
    bool isNumber = false;
    options.flightTime = value.toDouble(&isNumber);
    return word.startsWith(QLatin1StringView("flight-time=")) && isNumber && std::isfinite(options.flightTime);
}

/// Writes a line a call; null when the file can't be had.
std::shared_ptr<std::FILE> openLog(const QString &name)
{
    if (name == u'-')
        return {stdout, [](std::FILE *) {}};
    return {std::fopen(name.toLocal8Bit().constData(), "a"), [](std::FILE *file) {
                if (file)
                    std::fclose(file);
            }};
}
} // namespace

std::optional<MsfsOptions> MsfsOptions::parse(const QString &words)
{
    MsfsOptions options;
    for (const QString &word : words.split(u' ', Qt::SkipEmptyParts)) {
        if (!readWord(word, options))
            return {};
    }
    return options;
}

MsfsOptions MsfsOptions::fromEnvironment()
{
    const QString words = qEnvironmentVariable("TARVO_PRACTICE_MSFS");
    if (const auto options = parse(words))
        return *options;
    std::fprintf(stderr, "TARVO_PRACTICE_MSFS can't be read: %s\n", qPrintable(words));
    return {};
}

void MsfsOptions::apply(MsfsStandIn &simulator) const
{
    simulator.setApplication(is2024 ? message::msfs2024() : message::msfs2020());
    simulator.setFlightTime(flightTime);
    simulator.setCreateAnswering(creating);
    if (refuse)
        simulator.wire().failAlways(QStringLiteral("Open"));
    if (log.isEmpty())
        return;
    if (const auto file = openLog(log)) {
        simulator.wire().setListener([file](const QString &line) {
            if (isFrequentCall(line))
                return;
            std::fprintf(file.get(), "SimConnect <<< %s\n", line.toUtf8().constData());
            std::fflush(file.get());
        });
    }
}

bool isFrequentCall(const QString &line)
{
    return line.startsWith(QLatin1StringView("SetDataOnSimObject 30000 ")) ||
           line.startsWith(QLatin1StringView("RequestDataOnSimObjectType "));
}

} // namespace tarvo::practice
