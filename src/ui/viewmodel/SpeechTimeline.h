#pragma once

#include "ui/viewmodel/RowsModel.h"

#include <QString>

namespace tarvo::ui {

/// Somebody's speech on one radio, without a longer break. Times in ms of a clock that never jumps.
struct Speech
{
    int radio = 0; ///< 0: COM1, 1: COM2
    QString callsign;
    bool own = false; ///< the pilot himself
    qint64 fromMs = 0;
    qint64 toMs = 0;

    bool operator==(const Speech &) const = default;
};

/// Who spoke on which radio in the last minute, the newest first. Roles: as the members of Speech.
class SpeechTimeline : public RowsModel<Speech>
{
public:
    static constexpr qint64 spanMs = 60'000;
    static constexpr qsizetype longestCallsign = 20; ///< characters that are shown

    explicit SpeechTimeline(QObject *parent = nullptr);

    /// Speech of this moment: of `callsign` on `radio`.
    void heard(int radio, const QString &callsign, bool own, qint64 nowMs);
    /// What ended more than a minute before goes.
    void forgetOld(qint64 nowMs);
};

} // namespace tarvo::ui
