#pragma once

#include "model/SimulatorMode.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace tarvo::diagnosis {

/// The program's word to itself: list the sound devices and do nothing else.
inline constexpr const char *soundOption = "--list-sound";

/// What the command line asks for.
struct Arguments
{
    QString packFile = {};                              ///< the archive to make; empty: none
    std::optional<model::SimulatorMode> simulator = {}; ///< the one that is flown; nothing: either
    bool listSound = false;
    QString information = {}; ///< help or version: to be printed instead of checking
};

/// Reads the command line, the program's name first. Nothing when it is wrong; then `error` says why.
std::optional<Arguments> readArguments(const QStringList &arguments, QString *error);

} // namespace tarvo::diagnosis
