#pragma once

#include <QByteArray>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <cstddef>
#include <memory>
#include <vector>

namespace tarvo::test {

constexpr int soundRate = 48000; ///< Hz, of all that is played to and recorded from the server

/// A private PulseAudio with the null sinks "spk_a" and "spk_b" and the virtual microphone "mic_a", which PortAudio
/// sees through ALSA. The sinks are stereo, the microphone mono. One in a program, made before PortAudio's first call:
/// this program's environment leads to it, and it is ended with it.
class SoundServer
{
public:
    SoundServer();
    ~SoundServer();

    /// Starts it, also again after kill(). False when it doesn't come up.
    bool start();
    /// Ends it as a crash would.
    void kill();
    void freeze(); ///< SIGSTOP
    void thaw();   ///< SIGCONT

    /// "spk_b" is listed on, but can't be opened while it is unplugged.
    void plugSpeaker(bool plugged) const;

    /// Runs pactl; what it prints.
    QByteArray control(const QStringList &arguments) const;

private:
    friend class SoundPlayer;
    friend class SoundRecorder;

    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }
    void signal(int number);
    void writeConfiguration() const;

    QTemporaryDir m_folder;
    QProcessEnvironment m_environment;
    std::unique_ptr<QProcess> m_process;
};

/// Says something into the microphone, once.
class SoundPlayer
{
public:
    SoundPlayer(const SoundServer &server, const std::vector<float> &samples);
    ~SoundPlayer();

private:
    QProcess m_process;
};

/// Hears a sink in mono, from its construction on.
class SoundRecorder
{
public:
    SoundRecorder(const SoundServer &server, const char *sink);
    ~SoundRecorder();

    /// All that was heard until now.
    const std::vector<float> &samples();
    /// When one of them sounded, in seconds of the steady clock; the better, the more often samples() was called. Holds
    /// some seconds after a gap too, such as when the machine stood still and the sound server threw away what waited.
    double timeOf(std::size_t sample) const;

private:
    QProcess m_process;
    QByteArray m_rest; ///< less than a sample
    std::vector<float> m_samples;
    std::vector<double> m_starts; ///< when the first would have sounded, as seen in each second
};

} // namespace tarvo::test
