#include "ui/viewmodel/SpeechTimeline.h"

#include "ui/viewmodel/ShownText.h"

namespace tarvo::ui {

namespace {

constexpr qint64 longestBreakMs = 600;
/// Speech comes fifty times a second, and a drawn line needn't grow that often.
constexpr qint64 growthMs = 200;
/// A server can name any number of callsigns.
constexpr qsizetype mostRows = 100;

constexpr Role<Speech> roles[] = {
    {"radio", member<&Speech::radio, Speech>}, {"callsign", member<&Speech::callsign, Speech>},
    {"own", member<&Speech::own, Speech>},     {"fromMs", member<&Speech::fromMs, Speech>},
    {"toMs", member<&Speech::toMs, Speech>},
};

} // namespace

SpeechTimeline::SpeechTimeline(QObject *parent) : RowsModel(roles, parent) {}

void SpeechTimeline::heard(int radio, const QString &callsign, bool own, qint64 nowMs)
{
    const QString shown = shownText(callsign, longestCallsign);
    for (qsizetype i = 0; i < rows().size(); ++i) {
        Speech row = rows().at(i);
        if (nowMs - row.toMs > longestBreakMs || row.radio != radio || row.own != own || row.callsign != shown)
            continue;
        if (nowMs - row.toMs >= growthMs) {
            row.toMs = nowMs;
            replace(i, row);
        }
        return;
    }
    prepend({radio, shown, own, nowMs, nowMs}, mostRows);
}

void SpeechTimeline::forgetOld(qint64 nowMs)
{
    for (qsizetype i = rows().size() - 1; i >= 0; --i) {
        if (nowMs - rows().at(i).toMs > spanMs)
            remove(i);
    }
}

} // namespace tarvo::ui
