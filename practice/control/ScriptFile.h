#pragma once

#include <QList>
#include <QMap>
#include <QString>

#include <optional>

namespace tarvo::practice {

/// One event of a script.
struct ScriptEvent
{
    int line = 0;    ///< where it stands in the file, from 1
    qint64 atMs = 0; ///< since the script's start
    QString verb;
    QMap<QString, QString> arguments;

    bool operator==(const ScriptEvent &) const = default;
};

/// A script as it is written: one event a line, in the order of their times.
///
///     start login                  before the first event; or "start now"
///     0.5 verb key=value ...       seconds since the start
///     +2 verb key="a text" ...     seconds since the event before
///     # a comment
///
/// A value ends at a blank. One that holds blanks or quotes stands in "..." with \" and \\ for a quote and a
/// backslash, or in '...' just as it is. A comment ends with its line and begins where a word would.
struct ScriptFile
{
    enum class Start
    {
        Login, ///< when the first client has logged in at the FSD server
        Now
    };

    static constexpr double longestSeconds = 1'000'000;

    Start start = Start::Login;
    QList<ScriptEvent> events;

    /// Nothing when the text is malformed; then `error` says why, after the name of the file and the line's number.
    static std::optional<ScriptFile> parse(const QString &text, const QString &fileName, QString *error);
};

} // namespace tarvo::practice
