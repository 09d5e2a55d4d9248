#pragma once

#include "practice/simconnect/AiTraffic.h"

#include <QString>

#include <optional>

namespace tarvo::practice {

class MsfsStandIn;

/// How a stand-in that nobody holds in the hand behaves: in a DLL, or in the practice build of the client. Read from
/// the environment variable TARVO_PRACTICE_MSFS, words with blanks between them.
struct MsfsOptions
{
    bool is2024 = false;      ///< "2024"; "2020" is the default
    bool refuse = false;      ///< "refuse": it can't be opened
    double flightTime = 0;    ///< "flight-time=300": seconds
    CreateAnswering creating; ///< "create=2000", "create=never", "create=fail": ms, no answer, exception 22
    QString log;              ///< "log=FILE": calls are added to it, "-" is the standard output

    /// Nothing when there is a word that it doesn't know.
    static std::optional<MsfsOptions> parse(const QString &words);
    /// Of the environment; a variable that can't be read is told on the standard error output and stands for nothing.
    static MsfsOptions fromEnvironment();

    void apply(MsfsStandIn &simulator) const;
};

/// True for calls that come many times a second, or once without end: waypoints and requests for the traffic. Logs
/// leave them out.
bool isFrequentCall(const QString &line);

} // namespace tarvo::practice
