#pragma once

#include "diagnosis/Finding.h"

#include <QStringList>

#include <chrono>
#include <optional>

namespace tarvo::diagnosis {

struct StoredSettings;

/// The names of the devices that the sound system offers, over all its drivers.
struct SoundFacts
{
    QStringList inputs;
    QStringList outputs;
};

/// The names on lines, "in ..." and "out ...": what a process of its own prints for lookAtSound().
QByteArray listSound();
/// Reads what listSound() gives.
SoundFacts readSound(const QByteArray &lines);
/// Lets `program` do it: a sound system may hang, and one that lacks its configuration ends the process that asks.
/// Nothing when it fails or takes longer than the limit. Waits.
std::optional<SoundFacts> lookAtSound(const QString &program, std::chrono::milliseconds limit);
Findings judgeSound(const std::optional<SoundFacts> &facts, const StoredSettings &settings);

} // namespace tarvo::diagnosis
