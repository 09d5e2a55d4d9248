#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace tarvo::practice {

/// A line that the server sent.
struct RecordedLine
{
    qint64 ms = 0; ///< behind the client's login line, by the recording; what came before it has 0
    QString text;  ///< without its line end

    bool operator==(const RecordedLine &) const = default;
};

/// One connection of a client, from the server's greeting on.
struct RecordedConnection
{
    QString callsign;             ///< as the client logged in; empty when the recording begins later
    QList<RecordedLine> greeting; ///< what came before the client's login
    QList<RecordedLine> lines;    ///< what came after it
};

using Recording = QList<RecordedConnection>;

/// Reads a client's network log, "[HH:mm:ss.zzz] <<< line". Times go on over midnight, and stand still where the clock
/// was set back. Lines of another form are passed over. Nothing when the server says nothing in it.
std::optional<Recording> readRecording(const QString &log);

/// The line for a client that has logged in under another callsign: fields that are the recorded callsign become his,
/// the sender's behind the identifier too.
QString readdressed(const QString &line, const QString &recorded, const QString &actual);

} // namespace tarvo::practice
