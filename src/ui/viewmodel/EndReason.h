#pragma once

#include <QString>

namespace tarvo::ui {

/// Why a connection failed, in the pilot's language where the words are the program's own, Qt's or the system's; a
/// server's words stay as they are.
QString shownReason(const QString &told);

/// How long an error explains an end that follows it, ms. A server tells why, then closes.
constexpr qint64 errorExplainsForMs = 10'000;

/// An error, and the steady time at which it was told, ms. Without a text there was none.
struct ToldError
{
    QString text;
    qint64 at = 0;

    bool operator==(const ToldError &) const = default;
};

/// Which of two errors, one told after the other, explains an end. One that tells why isn't replaced by one that says
/// only that the connection was closed, for as long as it explains an end.
ToldError tellingError(const ToldError &before, const ToldError &next);

/// Why a connection has ended: the last error, if it came shortly before. `now`: steady, ms.
QString reasonOfEnd(const ToldError &error, qint64 now);

} // namespace tarvo::ui
