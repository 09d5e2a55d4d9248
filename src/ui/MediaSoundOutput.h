#pragma once

#include "ui/SoundOutput.h"

#include <QAudioOutput>
#include <QMediaPlayer>

namespace tarvo::ui {

/// Qt's media player. Without a sound device nothing begins. Needs the event loop of its thread.
class MediaSoundOutput : public SoundOutput
{
public:
    MediaSoundOutput();

    void begin(const QUrl &url, float volume) override;

    const QMediaPlayer &player() const { return m_player; }

private:
    QAudioOutput m_output; ///< outlives the player that uses it
    QMediaPlayer m_player;
};

} // namespace tarvo::ui
