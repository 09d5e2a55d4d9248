#include "ui/MediaSoundOutput.h"

#include <QAudioDevice>
#include <QDebug>
#include <QMediaDevices>
#include <QUrl>

namespace tarvo::ui {

MediaSoundOutput::MediaSoundOutput()
{
    m_player.setAudioOutput(&m_output);
}

void MediaSoundOutput::begin(const QUrl &url, float volume)
{
    // Without a device the player's pipeline fails on a thread of its own, while the next sound takes it apart on this
    // one: that has crashed inside Qt.
    if (QMediaDevices::defaultAudioOutput().isNull()) {
        qDebug() << "No sound device for" << url.fileName();
        return;
    }
    m_output.setVolume(volume);
    m_player.stop();
    if (m_player.source() != url)
        m_player.setSource(url);
    m_player.setPosition(0);
    m_player.play();
}

} // namespace tarvo::ui
