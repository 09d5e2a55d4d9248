#include "ui/MediaSoundOutput.h"

#include <QUrl>

namespace tarvo::ui {

MediaSoundOutput::MediaSoundOutput()
{
    m_player.setAudioOutput(&m_output);
}

void MediaSoundOutput::begin(const QUrl &url, float volume)
{
    m_output.setVolume(volume);
    m_player.stop();
    if (m_player.source() != url)
        m_player.setSource(url);
    m_player.setPosition(0);
    m_player.play();
}

} // namespace tarvo::ui
