#include "model/SimulatorMode.h"

namespace tarvo::model {

namespace {

struct ModeText
{
    SimulatorMode mode;
    QLatin1String text;
};

constexpr ModeText modeTexts[] = {
    {SimulatorMode::None, QLatin1String("NONE")},
    {SimulatorMode::Msfs, QLatin1String("MSFS")},
    {SimulatorMode::XPlane, QLatin1String("XPLANE")},
};

} // namespace

QString modeText(SimulatorMode mode)
{
    for (const ModeText &row : modeTexts) {
        if (row.mode == mode)
            return row.text;
    }
    return {};
}

SimulatorMode modeFromText(const QString &text)
{
    for (const ModeText &row : modeTexts) {
        if (row.text == text)
            return row.mode;
    }
    return SimulatorMode::None;
}

} // namespace tarvo::model
