#pragma once

#include <QString>
#include <QStringList>

namespace tarvo::bench {

/// Where the process under test finds the rest of the world.
struct ClientArguments
{
    QString folder; ///< its configuration, type data and logs
    quint16 fsdPort = 0;
    quint16 xplanePort = 0;
    QString pluginUrl;

    /// As words of a command line, and read back from them.
    QStringList toWords() const;
    static ClientArguments fromWords(const QStringList &words);
};

/// Runs the client as the program composes it, pages' models included, without its windows: waits for X-Plane, connects
/// as a pilot, and ends with the connection. Gives the exit code. Needs a QCoreApplication.
int runClient(const ClientArguments &arguments);

} // namespace tarvo::bench
