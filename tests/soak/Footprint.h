#pragma once

#include <QString>

namespace tarvo::test {

/// What a process and a session hold on to. Of two moments that should be alike, the later must not hold more.
struct Footprint
{
    qsizetype descriptors = 0; ///< files and sockets; 0 where the system doesn't tell
    qsizetype threads = 0;     ///< 0 where the system doesn't tell
    qsizetype objects = 0;     ///< children of the session's managers, of all generations
    qsizetype aircraft = 0;    ///< NetworkManager's
    qsizetype records = 0;     ///< AircraftManager's
    qsizetype controllers = 0; ///< ControllerManager's
    qsizetype nearby = 0;      ///< stations of the messages page
    qsizetype sessions = 0;    ///< private ones
    qsizetype messages = 0;
    qsizetype events = 0;   ///< recent ones of the server page
    qsizetype logLines = 0; ///< of the server page

    /// The process's part alone.
    static Footprint ofProcess();
    /// What the lists may hold at any time; of the rest, more than there can be.
    static Footprint bounds();

    bool operator==(const Footprint &) const = default;
    /// "17 threads instead of 16, ..." for all that is more than in `other`; empty when nothing is.
    QString excessOver(const Footprint &other) const;
};

} // namespace tarvo::test
