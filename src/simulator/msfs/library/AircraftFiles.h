#pragma once

#include "simulator/msfs/library/AircraftConfig.h"
#include "simulator/msfs/library/MsfsAircraftEntry.h"

#include <QHash>
#include <QString>

#include <functional>

namespace tarvo::simulator::msfs {

/// The bytes of a file's beginning, at most 4 MiB of them; a real aircraft.cfg has some thousand. Empty for what can't
/// be read or is no ordinary file.
QByteArray readAircraftFile(const QString &path);

/// The file that a variation builds on, by what its VARIATION section says; empty when it says nothing. `path`: of the
/// variation's own file. Looks whether a folder or a file is meant.
QString baseFileOf(const AircraftConfig &config, const QString &path);

/// The aircraft.cfg files of one scan: each is read once, be it by its own right or as the base of variations.
class AircraftFiles
{
public:
    /// Gives a file's bytes; empty for one that can't be read.
    using Reader = std::function<QByteArray(const QString &path)>;

    explicit AircraftFiles(Reader reader = readAircraftFile) : m_read(std::move(reader)) {}

    /// The file that has its turn.
    AircraftConfig take(const QString &path);
    /// Its own [GENERAL] values, and those of the files that it builds on where it says nothing. A chain that comes
    /// back to one of its files ends there.
    MsfsAircraftMetadata metadataOf(const QString &path, const AircraftConfig &config);

private:
    const AircraftConfig &readAhead(const QString &path);

    Reader m_read;
    QHash<QString, AircraftConfig> m_ahead; ///< read as a base before their turn
    QHash<QString, MsfsAircraftMetadata> m_metadata;
};

} // namespace tarvo::simulator::msfs
