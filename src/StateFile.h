#pragma once

#include "ConfigKey.h"

#include <QSettings>
#include <QString>

#include <memory>

namespace tarvo {

namespace state {

/// Where the main window stood: "x,y,width,height" in pixels, frame's corner and inner size; empty before its first
/// end.
inline constexpr StringKey windowPlace{.key = "Window/Place"};
inline constexpr BoolKey windowMaximized{"Window/Maximized", false};
/// Where the compact view stood, in the same form.
inline constexpr StringKey compactPlace{.key = "Window/CompactPlace"};
/// The name of the newest crash file that the log has named.
inline constexpr StringKey lastCrashTold{.key = "Crash/LastTold"};
/// The tour of the first start has been shown.
inline constexpr BoolKey tourSeen{"Tour/Seen", false};
/// Whether messages and connections are heard.
inline constexpr BoolKey soundsOn{"Sounds/On", true};
/// Percent.
inline constexpr IntKey soundsVolume{"Sounds/Volume", 100};

} // namespace state

/// What the program remembers by itself, without being told to: "state.ini" in the data root. Nothing in it is secret,
/// and nothing is lost with it but comfort. Main thread only.
///
/// Reading never fails; what isn't there is the key's default. A write is synced at once. An unwritable file is no
/// error: the values go on working in memory, and the log is told once.
class StateFile
{
public:
    explicit StateFile(const QString &dataRoot);

    QString get(const StringKey &key) const;
    bool get(const BoolKey &key) const;
    int get(const IntKey &key) const;

    /// A value that is there already writes nothing.
    void set(const StringKey &key, const QString &value);
    void set(const BoolKey &key, bool value);
    void set(const IntKey &key, int value);

private:
    void store(const char *key, const QString &value);

    std::unique_ptr<QSettings> m_settings;
    bool m_failureTold = false;
};

} // namespace tarvo
