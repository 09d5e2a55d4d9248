#pragma once

#include "common/Clock.h"
#include "common/VolumeInfo.h"
#include "ui/viewmodel/ConnectionStatus.h"
#include "ui/viewmodel/RowsModel.h"
#include "ui/viewmodel/SpeechTimeline.h"
#include "voice/client/ConnectionState.h"

#include <QObject>
#include <QPoint>
#include <QString>
#include <QTimer>
#include <QVariantList>

#include <vector>

namespace tarvo {
class AppConfig;
}
namespace tarvo::input {
class PttService;
}
namespace tarvo::model {
struct RadioStackState;
}
namespace tarvo::voice {
class AudioDevice;
class VoiceClient;
enum class DeviceEvent;
enum class StreamRole;
} // namespace tarvo::voice

namespace tarvo::ui {

/// A line of the voice page's event log.
struct VoiceEvent
{
    QString time; ///< local, "HH:mm:ss"
    QString text;

    bool operator==(const VoiceEvent &) const = default;
};

/// One radio as the voice page shows it.
struct VoiceRadio
{
    double activeMHz = 0;
    double standbyMHz = 0;
    bool transmits = false;
    bool receives = false;
    double volume = 1; ///< 0 to 1; what is heard follows the simulator's

    bool operator==(const VoiceRadio &) const = default;
};

/// The voice session for the pages: its state, who speaks, how loud, the tests of the devices, and push-to-talk. In QML
/// it is the context property "voiceBackend", and by another name "voiceServiceBackend".
class VoiceServiceViewModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool connected READ connected NOTIFY connectStateChanged)
    Q_PROPERTY(QString connectionStateText READ connectionStateText NOTIFY connectStateChanged)
    Q_PROPERTY(QString connectionTone READ connectionTone NOTIFY connectStateChanged)
    Q_PROPERTY(bool canTest READ canTest NOTIFY connectStateChanged)
    Q_PROPERTY(QString failureText READ failureText NOTIFY failureChanged)
    Q_PROPERTY(QString callsign READ callsign NOTIFY connectStateChanged)
    Q_PROPERTY(QString com1Freq READ com1Freq NOTIFY com1InfoChanged)
    Q_PROPERTY(bool com1TX READ com1TX NOTIFY com1InfoChanged)
    Q_PROPERTY(bool com1RX READ com1RX NOTIFY com1InfoChanged)
    Q_PROPERTY(double com1Volume READ com1Volume WRITE setCom1Volume NOTIFY com1InfoChanged)
    Q_PROPERTY(QString com2Freq READ com2Freq NOTIFY com2InfoChanged)
    Q_PROPERTY(bool com2TX READ com2TX NOTIFY com2InfoChanged)
    Q_PROPERTY(bool com2RX READ com2RX NOTIFY com2InfoChanged)
    Q_PROPERTY(double com2Volume READ com2Volume WRITE setCom2Volume NOTIFY com2InfoChanged)
    Q_PROPERTY(QVariantList eventLog READ eventLog NOTIFY eventLogChanged)
    Q_PROPERTY(QAbstractListModel *eventRows READ eventRows CONSTANT)
    Q_PROPERTY(bool pttActive READ pttActive NOTIFY pttActiveChanged)
    Q_PROPERTY(bool sending READ sending NOTIFY sendingChanged)
    Q_PROPERTY(bool receiving READ receiving NOTIFY receivingChanged)
    Q_PROPERTY(double lastReceiveFreq READ lastReceiveFreq NOTIFY receivingChanged)
    Q_PROPERTY(QString lastReceiveCallsign READ lastReceiveCallsign NOTIFY receivingChanged)
    Q_PROPERTY(bool micTesting READ micTesting NOTIFY voiceTestingChanged)
    Q_PROPERTY(bool loopbackTarget READ loopbackTarget WRITE setLoopbackTarget NOTIFY voiceTestingChanged)
    Q_PROPERTY(bool conflictTesting READ conflictTesting NOTIFY voiceTestingChanged)
    Q_PROPERTY(double inputLevel READ inputLevel NOTIFY inputLevelChanged)
    Q_PROPERTY(double inputDb READ inputDb NOTIFY inputLevelChanged)
    Q_PROPERTY(double outputLevel READ outputLevel NOTIFY outputLevelChanged)
    Q_PROPERTY(double outputDb READ outputDb NOTIFY outputLevelChanged)
    Q_PROPERTY(QAbstractListModel *speechRows READ speechRows CONSTANT)
    Q_PROPERTY(double timelineNow READ timelineNow NOTIFY timelineMoved)
    Q_PROPERTY(int miniRight READ miniRight NOTIFY miniModeChanged)
    Q_PROPERTY(int miniBottom READ miniBottom NOTIFY miniModeChanged)
    Q_PROPERTY(bool miniMode READ miniMode WRITE setMiniMode NOTIFY miniModeChanged)

public:
    /// `client` may be null: then nothing can be connected or tested. All must outlive it.
    VoiceServiceViewModel(voice::VoiceClient *client, input::PttService &ptt, voice::AudioDevice &devices,
                          AppConfig &config, QObject *parent = nullptr,
                          const common::Clock &clock = common::systemClock());

    bool connected() const; ///< to the server; it needn't have greeted
    /// Failed when attemptFailed().
    LinkState linkState() const;
    QString connectionStateText() const;
    QString connectionTone() const;
    bool isConnecting() const { return m_state == voice::ConnectionState::Connecting && !m_attemptFailed; }
    /// The last attempt has failed, and there is no other. The state and its text stay at Connecting all the same.
    bool attemptFailed() const { return m_attemptFailed; }
    /// Why the last attempt failed or the connection ended; empty from the next attempt on.
    QString failureText() const { return m_failureText; }
    /// The devices can be tested only while nothing else uses them.
    bool canTest() const { return m_client && m_state == voice::ConnectionState::Disconnected; }
    QString callsign() const { return m_callsign; } ///< "Unknown" until the server has greeted
    QString com1Freq() const { return frequencyText(m_com1); }
    bool com1TX() const { return m_com1.transmits; }
    bool com1RX() const { return m_com1.receives; }
    double com1Volume() const { return m_com1.volume; }
    void setCom1Volume(double volume);
    QString com2Freq() const { return frequencyText(m_com2); }
    bool com2TX() const { return m_com2.transmits; }
    bool com2RX() const { return m_com2.receives; }
    double com2Volume() const { return m_com2.volume; }
    void setCom2Volume(double volume);
    QVariantList eventLog() const { return m_events.toList(); } ///< maps with "time" and "text", newest first
    RowsModel<VoiceEvent> *eventRows() { return &m_events; }
    bool pttActive() const { return m_pttActive; }
    bool sending() const { return m_sendTimer.isActive(); }      ///< voice went out in the last 80 ms
    bool receiving() const { return m_receiveTimer.isActive(); } ///< voice came in in the last 80 ms
    double lastReceiveFreq() const { return m_lastReceiveFreq; } ///< MHz; 0: nobody was heard yet
    QString lastReceiveCallsign() const { return m_lastReceiveCallsign; }
    bool micTesting() const { return m_micTesting; }
    bool loopbackTarget() const { return m_loopbackTarget; } ///< true: the microphone is heard on the speaker
    void setLoopbackTarget(bool speaker);
    bool conflictTesting() const { return m_conflictTesting; }
    double inputLevel() const { return m_input.percent; }   ///< 0 to 100
    double inputDb() const { return m_input.db; }           ///< -96 to 0
    double outputLevel() const { return m_output.percent; } ///< 0 to 100
    double outputDb() const { return m_output.db; }         ///< -96 to 0
    SpeechTimeline *speechRows() { return &m_speech; }
    /// Where the time line ends, in its rows' ms. Moves while it shows anything.
    double timelineNow() const { return static_cast<double>(m_timelineNow); }
    /// The small window that stays on top is open.
    bool miniMode() const { return m_miniMode; }
    // Where it opens, as setMiniCorner() was told.
    int miniRight() const { return m_miniCorner.x(); }
    int miniBottom() const { return m_miniCorner.y(); }
    void setMiniMode(bool open);

    /// Cut to what the page has room for.
    void setFailure(const QString &reason);
    /// A line on top of the event log, which keeps 100.
    void addEvent(const QString &text);
    /// The server has silenced this client: lets the key go. The next press counts again.
    void disableTransmit();
    /// The devices are needed, or have been closed under a test.
    void endTests();
    /// Whether a window that shows the session can be seen; at first one can. Lamps, meters and time line stand still
    /// while none can.
    void setSeen(bool seen);
    /// Where the small window opens: behind the last pixel of the pilot's screen, right and bottom, without task bars.
    void setMiniCorner(QPoint corner) { m_miniCorner = corner; }

    Q_INVOKABLE void connectToVoiceServer();
    Q_INVOKABLE void startMicTest();
    Q_INVOKABLE void stopMicTest();
    Q_INVOKABLE void startPlayConflict();
    Q_INVOKABLE void stopPlayConflict();

public slots:
    void radioStackUpdate(const tarvo::model::RadioStackState &state);
    /// The page's button. Ignores what it is told already.
    void setPtt(bool active);

signals:
    void connectStateChanged();
    void failureChanged();
    void com1InfoChanged();
    void com2InfoChanged();
    void eventLogChanged();
    void pttActiveChanged();
    void sendingChanged();
    void receivingChanged();
    void voiceTestingChanged();
    void inputLevelChanged();
    void outputLevelChanged();
    void timelineMoved();
    void miniModeChanged();

private:
    using Signal = void (VoiceServiceViewModel::*)();

    static QString frequencyText(const VoiceRadio &radio);
    void connectClient();
    void onConnectionState(voice::ConnectionState state);
    void onError(const QString &error);
    void setAttemptFailed(bool failed);
    void onSent(const common::VolumeInfo &volume);
    void onReceived(const QString &callsign, int kHz, const common::VolumeInfo &volume);
    int radioOf(int kHz) const;
    void onKey(bool active);
    void applyPtt();
    void ensureMeterConnections();
    void onDeviceEvent(voice::DeviceEvent event, const std::vector<voice::StreamRole> &roles);
    void reportMissingDevices();
    void prepareDevices();
    void setInputMeter(const common::VolumeInfo &volume);
    void setOutputMeter(const common::VolumeInfo &volume);
    void resetMeters();
    void heard(int radio, const QString &callsign, bool own);
    void moveTimeline();
    void tellIfSeen(Signal changed);

    voice::VoiceClient *m_client;
    voice::AudioDevice &m_devices;
    AppConfig &m_config;
    const common::Clock &m_clock;

    voice::ConnectionState m_state = voice::ConnectionState::Disconnected;
    bool m_attemptFailed = false;
    QString m_failureText;
    QString m_callsign;
    VoiceRadio m_com1;
    VoiceRadio m_com2;
    RowsModel<VoiceEvent> m_events;
    bool m_keyHeld = false;
    bool m_buttonHeld = false; ///< the small window's
    bool m_pttActive = false;
    QTimer m_sendTimer;
    QTimer m_receiveTimer;
    double m_lastReceiveFreq = 0;
    QString m_lastReceiveCallsign;
    bool m_micTesting = false;
    bool m_loopbackTarget = false;
    bool m_conflictTesting = false;
    bool m_metersConnected = false;
    common::VolumeInfo m_input;
    common::VolumeInfo m_output;
    SpeechTimeline m_speech;
    QTimer m_timelineTimer;
    qint64 m_timelineNow = 0;
    bool m_isSeen = true;
    bool m_miniMode = false;
    QPoint m_miniCorner;
};

} // namespace tarvo::ui
