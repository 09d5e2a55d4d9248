#pragma once

#include "ui/SoundOutput.h"

#include <QObject>
#include <QUrl>

#include <memory>

namespace tarvo::ui {

/// Plays one short sound at a time. All players share a thread, which the first sound starts, so that no call here
/// waits for the sound system. Needs the application object. Used on the main thread.
class SoundPlayer : public QObject
{
    Q_OBJECT

public:
    explicit SoundPlayer(QObject *parent = nullptr);
    /// `makeOutput` is called on the sounds' thread, with the first sound; what it makes is destroyed there.
    explicit SoundPlayer(SoundOutput::Factory makeOutput, QObject *parent = nullptr);
    /// Ends the sound. Sounds that have not begun are never heard.
    ~SoundPlayer() override;

    /// Plays from the beginning, also when the same sound is playing. While the sound system keeps an earlier sound
    /// waiting, only the newest is kept. `volume`: 0.0 to 1.0.
    void play(const QUrl &url, float volume);

    /// While it is off nothing is played. It begins on.
    void setOn(bool on) { m_on = on; }
    bool isOn() const { return m_on; }
    /// The share of each sound's own volume that is heard: 0.0 to 1.0, from the next sound on. At 0.0 nothing is
    /// played.
    void setLevel(float level) { m_level = level; }

    /// What was to be heard last.
    QUrl source() const { return m_source; }
    float volume() const { return m_volume; }

signals:
    /// A sound was asked for, whether it is heard or not.
    void wanted(const QUrl &url);
    /// A sound is to be heard.
    void played(const QUrl &url);

private:
    class Wishes;

    SoundOutput::Factory m_makeOutput;
    std::shared_ptr<Wishes> m_wishes; ///< shared with the sounds' thread; null before the first
    QUrl m_source;
    float m_volume = 1.0F;
    float m_level = 1.0F;
    bool m_on = true;
};

} // namespace tarvo::ui
