#pragma once

#include <QAudioOutput>
#include <QMediaPlayer>
#include <QObject>

namespace tarvo::ui {

/// Plays one short sound at a time. Without a sound device it is silent.
class SoundPlayer : public QObject
{
    Q_OBJECT

public:
    explicit SoundPlayer(QObject *parent = nullptr);

    /// Plays from the beginning, also when the same sound is playing. `volume`: 0.0 to 1.0.
    void play(const QUrl &url, float volume);

    QUrl source() const { return m_player.source(); }
    float volume() const { return m_output.volume(); }

signals:
    /// A sound was asked for.
    void played(const QUrl &url);

private:
    QAudioOutput m_output{this}; ///< outlives the player that uses it
    QMediaPlayer m_player{this};
};

} // namespace tarvo::ui
