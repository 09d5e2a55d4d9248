#include "traffic/ClientArguments.h"

namespace tarvo::bench {

QStringList ClientArguments::toWords() const
{
    return {folder, QString::number(fsdPort), QString::number(xplanePort), pluginUrl,
            QString::number(ordinaryThreads ? 1 : 0)};
}

ClientArguments ClientArguments::fromWords(const QStringList &words)
{
    return {.folder = words.value(0),
            .fsdPort = static_cast<quint16>(words.value(1).toUInt()),
            .xplanePort = static_cast<quint16>(words.value(2).toUInt()),
            .pluginUrl = words.value(3),
            .ordinaryThreads = words.value(4) == QLatin1StringView("1")};
}

} // namespace tarvo::bench
