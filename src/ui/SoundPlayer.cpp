#include "ui/SoundPlayer.h"

namespace tarvo::ui {

SoundPlayer::SoundPlayer(QObject *parent) : QObject(parent)
{
    m_player.setAudioOutput(&m_output);
}

void SoundPlayer::play(const QUrl &url, float volume)
{
    m_output.setVolume(volume);
    m_player.stop();
    if (m_player.source() != url)
        m_player.setSource(url);
    m_player.setPosition(0);
    m_player.play();
    emit played(url);
}

} // namespace tarvo::ui
