#pragma once

#include "practice/PracticeNetwork.h"

#include <QStringList>

#include <optional>

namespace tarvo::practice {

/// What the command line asks for.
struct Options
{
    PracticeSettings network;
    qint64 accessLife = 0; ///< seconds, as are the other two
    qint64 refreshLife = 0;
    qint64 fsdLife = 0;
    double flightTime = 0; ///< where the flight begins, seconds
    QString script;        ///< the script to play, a file; empty: none
    QString replay;        ///< the network log to replay, a file; empty: none
    bool quiet = false;
    QString information; ///< help or version: to be printed instead of running
};

/// Reads the command line, the program's name first. Nothing when it is wrong; then `error` says why.
std::optional<Options> readOptions(const QStringList &arguments, QString *error);

} // namespace tarvo::practice
