#include "support/SoundServer.h"

#include "support/Patience.h"

#include <QFile>

#include <sys/prctl.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <limits>
#include <utility>

namespace tarvo::test {

namespace {

// A sink for playing, a source for recording; the hints make PortAudio list them.
constexpr const char *alsaTemplate = R"(
pcm_type.pulse { lib "libasound_module_pcm_pulse.so" }
pcm.default { type pulse server "unix:%1" hint { show on description "Default" } }
ctl.default { type pulse server "unix:%1" }
pcm.spk_a { type asym playback.pcm { type pulse server "unix:%1" device "spk_a" } hint { show on description "A" } }
pcm.spk_b { type asym playback.pcm { type pulse server "unix:%2" device "spk_b" } hint { show on description "B" } }
pcm.mic_a { type asym capture.pcm { type pulse server "unix:%1" device "mic_a" } hint { show on description "Mic" } }
)";

void write(const QString &path, const QString &text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0)
        qFatal("%s can't be written", qPrintable(path));
}

QStringList rawSound(const QString &device)
{
    return {QStringLiteral("--device=") + device, QStringLiteral("--raw"),
            QStringLiteral("--format=float32le"), QStringLiteral("--rate=%1").arg(soundRate),
            QStringLiteral("--channels=1"),       QStringLiteral("--latency-msec=10")};
}

/// However this program ends, the other ends with it.
void tie(QProcess &process, const QProcessEnvironment &environment)
{
    process.setProcessEnvironment(environment);
    process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
}

void end(QProcess &process)
{
    process.kill();
    process.waitForFinished();
}

} // namespace

SoundServer::SoundServer() : m_environment(QProcessEnvironment::systemEnvironment())
{
    writeConfiguration();
    const QString socket = QStringLiteral("unix:") + path("socket");
    const std::pair<const char *, QString> variables[] = {{"HOME", m_folder.path()},
                                                          {"XDG_RUNTIME_DIR", m_folder.path()},
                                                          {"XDG_CONFIG_HOME", m_folder.path()},
                                                          {"PULSE_RUNTIME_PATH", path("run")},
                                                          {"PULSE_STATE_PATH", path("state")},
                                                          {"PULSE_COOKIE", path("cookie")},
                                                          {"PULSE_SERVER", socket},
                                                          {"PULSE_CLIENTCONFIG", path("client.conf")},
                                                          {"ALSA_CONFIG_PATH", path("alsa.conf")},
                                                          {"JACK_NO_START_SERVER", QStringLiteral("1")},
                                                          {"DBUS_SESSION_BUS_ADDRESS", QStringLiteral("disabled:")}};
    for (const auto &[name, value] : variables) {
        m_environment.insert(QLatin1String(name), value);
        qputenv(name, value.toUtf8());
    }
}

SoundServer::~SoundServer()
{
    kill();
}

void SoundServer::writeConfiguration() const
{
    write(path("client.conf"),
          QStringLiteral("autospawn = no\ndefault-server = unix:%1\nenable-shm = no\n").arg(path("socket")));
    write(path("alsa.conf"), QString::fromLatin1(alsaTemplate).arg(path("socket"), path("plug")));
    plugSpeaker(true);
}

void SoundServer::plugSpeaker(bool plugged) const
{
    if (plugged)
        QFile::link(path("socket"), path("plug"));
    else
        QFile::remove(path("plug"));
}

bool SoundServer::start()
{
    m_process = std::make_unique<QProcess>();
    tie(*m_process, m_environment);
    m_process->setStandardOutputFile(path("server.log"));
    m_process->setStandardErrorFile(path("server.log"));
    QStringList arguments{QStringLiteral("-n"),
                          QStringLiteral("--daemonize=no"),
                          QStringLiteral("--use-pid-file=no"),
                          QStringLiteral("--exit-idle-time=-1"),
                          QStringLiteral("--disable-shm=yes"),
                          QStringLiteral("--realtime=no"),
                          QStringLiteral("--high-priority=no")};
    // Without norewinds the first stream stalls.
    for (const QString &module :
         {QStringLiteral("module-native-protocol-unix socket=%1 auth-anonymous=1 auth-cookie-enabled=0")
              .arg(path("socket")),
          QStringLiteral("module-null-sink sink_name=spk_a norewinds=1 rate=48000 channels=2"),
          QStringLiteral("module-null-sink sink_name=spk_b norewinds=1 rate=48000 channels=2"),
          QStringLiteral("module-null-sink sink_name=micbus norewinds=1 rate=48000 channels=1"),
          QStringLiteral("module-remap-source source_name=mic_a master=micbus.monitor")})
        arguments << QStringLiteral("-L") << module;
    m_process->start(QStringLiteral("pulseaudio"), arguments);
    const bool isUp = waitFor([this] {
        return m_process->state() == QProcess::NotRunning || control({QStringLiteral("info")}).contains("spk_a");
    });
    control({QStringLiteral("set-default-sink"), QStringLiteral("spk_a")});
    control({QStringLiteral("set-default-source"), QStringLiteral("mic_a")});
    if (isUp && m_process->state() != QProcess::NotRunning)
        return true;
    QFile log(path("server.log"));
    if (log.open(QIODevice::ReadOnly))
        qWarning("%s", log.readAll().constData());
    return false;
}

void SoundServer::kill()
{
    if (m_process)
        end(*m_process);
    m_process.reset();
}

void SoundServer::freeze()
{
    signal(SIGSTOP);
}

void SoundServer::thaw()
{
    signal(SIGCONT);
}

void SoundServer::signal(int number)
{
    if (m_process)
        ::kill(static_cast<pid_t>(m_process->processId()), number);
}

QByteArray SoundServer::control(const QStringList &arguments) const
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.start(QStringLiteral("pactl"), arguments);
    process.waitForFinished();
    return process.readAllStandardOutput();
}

SoundPlayer::SoundPlayer(const SoundServer &server, const std::vector<float> &samples)
{
    tie(m_process, server.m_environment);
    m_process.start(QStringLiteral("pacat"),
                    QStringList{QStringLiteral("--playback")} + rawSound(QStringLiteral("micbus")));
    m_process.write(reinterpret_cast<const char *>(samples.data()),
                    static_cast<qint64>(samples.size() * sizeof(float)));
    m_process.closeWriteChannel();
}

SoundPlayer::~SoundPlayer()
{
    end(m_process);
}

SoundRecorder::SoundRecorder(const SoundServer &server, const char *sink)
{
    tie(m_process, server.m_environment);
    m_process.start(QStringLiteral("parec"), rawSound(QLatin1String(sink) + QStringLiteral(".monitor")));
}

SoundRecorder::~SoundRecorder()
{
    end(m_process);
}

const std::vector<float> &SoundRecorder::samples()
{
    m_rest += m_process.readAllStandardOutput();
    const auto whole = static_cast<std::size_t>(m_rest.size()) / sizeof(float);
    const std::size_t before = m_samples.size();
    m_samples.resize(before + whole);
    if (whole > 0)
        std::memcpy(m_samples.data() + before, m_rest.constData(), whole * sizeof(float));
    m_rest.remove(0, static_cast<qsizetype>(whole * sizeof(float)));
    const std::chrono::duration<double> now = std::chrono::steady_clock::now().time_since_epoch();
    if (whole == 0)
        return m_samples;
    m_starts.resize(m_samples.size() / soundRate + 1, std::numeric_limits<double>::max());
    m_starts.back() = std::min(m_starts.back(), now.count() - static_cast<double>(m_samples.size()) / soundRate);
    return m_samples;
}

double SoundRecorder::timeOf(std::size_t sample) const
{
    constexpr std::ptrdiff_t around = 2; // seconds; what is read late makes the start look later, never earlier
    const auto second = static_cast<std::ptrdiff_t>(sample / soundRate);
    const auto last = static_cast<std::ptrdiff_t>(m_starts.size());
    const auto begin = m_starts.begin() + std::clamp<std::ptrdiff_t>(second - around, 0, last - 1);
    const auto end = m_starts.begin() + std::clamp<std::ptrdiff_t>(second + around, 1, last);
    return *std::min_element(begin, end) + static_cast<double>(sample) / soundRate;
}

} // namespace tarvo::test
