#pragma once

#include <QHash>
#include <QString>

namespace tarvo::manager {

/// Sees to it that nothing is asked about a callsign more often than once in an interval, whatever the server answers.
/// Times are ms of a clock that never jumps.
class RequestPace
{
public:
    /// Callsigns that are remembered; a newcomer beyond them isn't due until others are.
    static constexpr qsizetype maximumCallsigns = 4000;

    explicit RequestPace(qint64 intervalMs) : m_intervalMs(intervalMs) {}

    /// True when the callsign may be asked about now.
    bool isDue(const QString &callsign, qint64 nowMs);
    /// It has been asked about.
    void note(const QString &callsign, qint64 nowMs);
    void clear() { m_asked.clear(); }

private:
    bool hasRoom(qint64 nowMs);

    const qint64 m_intervalMs;
    QHash<QString, qint64> m_asked; ///< when, by callsign
    qint64 m_swept = 0;             ///< when the due ones were last taken out
};

} // namespace tarvo::manager
