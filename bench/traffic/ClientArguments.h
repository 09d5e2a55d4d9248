#pragma once

#include <QString>
#include <QStringList>

namespace tarvo::bench {

/// Where a process under test finds the rest of the world.
struct ClientArguments
{
    QString folder; ///< its configuration, type data and logs
    quint16 fsdPort = 0;
    quint16 xplanePort = 0;
    QString pluginUrl;
    bool ordinaryThreads = false; ///< nng's threads without batch scheduling

    /// As words of a command line, and read back from them.
    QStringList toWords() const;
    static ClientArguments fromWords(const QStringList &words);
};

} // namespace tarvo::bench
