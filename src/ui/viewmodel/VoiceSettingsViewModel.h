#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

namespace tarvo {
class AppConfig;
struct StringKey;
} // namespace tarvo
namespace tarvo::input {
class PttService;
}
namespace tarvo::voice {
class AudioDevice;
}

namespace tarvo::ui::viewmodel {

struct NumberSetting;

/// The voice settings: what is set goes to the configuration and to the devices at once. In QML it is the context
/// property "voiceSettingsBackend".
class VoiceSettingsViewModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QStringList driverNames READ driverNames NOTIFY deviceListChanged)
    Q_PROPERTY(QStringList inputDeviceNames READ inputDeviceNames NOTIFY deviceListChanged)
    Q_PROPERTY(QStringList outputDeviceNames READ outputDeviceNames NOTIFY deviceListChanged)
    Q_PROPERTY(int driverIndex READ driverIndex NOTIFY deviceChanged)
    Q_PROPERTY(int inputIndex READ inputIndex NOTIFY deviceChanged)
    Q_PROPERTY(int outputHeadphoneIndex READ outputHeadphoneIndex NOTIFY deviceChanged)
    Q_PROPERTY(int outputSpeakerIndex READ outputSpeakerIndex NOTIFY deviceChanged)
    /// What is wrong with a chosen device; empty when nothing is.
    Q_PROPERTY(QString inputHint READ inputHint NOTIFY deviceChanged)
    Q_PROPERTY(QString outputHeadphoneHint READ outputHeadphoneHint NOTIFY deviceChanged)
    Q_PROPERTY(QString outputSpeakerHint READ outputSpeakerHint NOTIFY deviceChanged)
    Q_PROPERTY(QString pttKey READ pttKey NOTIFY pttDisplayNameChanged)
    Q_PROPERTY(bool pttListening READ pttListening NOTIFY pttListeningChanged)
    // A stored value out of range is shown within it, and stays as it is until another is set.
    Q_PROPERTY(double micGain READ micGain WRITE setMicGain NOTIFY settingsChanged)
    Q_PROPERTY(double pttVolume READ pttVolume WRITE setPttVolume NOTIFY settingsChanged)
    Q_PROPERTY(double pttPressFreq READ pttPressFreq WRITE setPttPressFreq NOTIFY settingsChanged)
    Q_PROPERTY(double pttReleaseFreq READ pttReleaseFreq WRITE setPttReleaseFreq NOTIFY settingsChanged)
    Q_PROPERTY(bool pttDevice READ pttDevice WRITE setPttDevice NOTIFY settingsChanged)
    Q_PROPERTY(double conflictVolume READ conflictVolume WRITE setConflictVolume NOTIFY settingsChanged)
    Q_PROPERTY(bool conflictDevice READ conflictDevice WRITE setConflictDevice NOTIFY settingsChanged)

public:
    /// All three outlive it.
    VoiceSettingsViewModel(AppConfig &config, voice::AudioDevice &devices, input::PttService &ptt,
                           QObject *parent = nullptr);

    QStringList driverNames() const;
    QStringList inputDeviceNames() const;
    QStringList outputDeviceNames() const;
    int driverIndex() const;
    int inputIndex() const;
    int outputHeadphoneIndex() const;
    int outputSpeakerIndex() const;
    QString inputHint() const;
    QString outputHeadphoneHint() const;
    QString outputSpeakerHint() const;
    /// The bound control's name for the pilot.
    QString pttKey() const;
    bool pttListening() const { return m_pttListening; }

    double micGain() const;        ///< dB, -20 to 20
    double pttVolume() const;      ///< 0 to 1
    double pttPressFreq() const;   ///< Hz, 100 to 4000
    double pttReleaseFreq() const; ///< Hz, 100 to 4000
    double conflictVolume() const; ///< 0 to 1
    // True for the speaker.
    bool pttDevice() const;
    bool conflictDevice() const;

    void setMicGain(double value);
    void setPttVolume(double value);
    void setPttPressFreq(double value);
    void setPttReleaseFreq(double value);
    void setConflictVolume(double value);
    void setPttDevice(bool speaker);
    void setConflictDevice(bool speaker);

    /// Returns at once; the signals come when the sound system has answered.
    Q_INVOKABLE void ensureDeviceListLoaded();
    // Each loads the devices first. An index that isn't in the list is ignored.
    Q_INVOKABLE void setDriver(int driverIndex);
    Q_INVOKABLE void setInput(int deviceIndex);
    Q_INVOKABLE void setOutputHeadphone(int deviceIndex);
    Q_INVOKABLE void setOutputSpeaker(int deviceIndex);
    /// The next press, which keys nothing, becomes the binding. Escape ends the listening instead.
    Q_INVOKABLE void startPttListening();
    Q_INVOKABLE void stopPttListening();

signals:
    void settingsChanged();
    void deviceListChanged();
    void deviceChanged();
    void pttDisplayNameChanged();
    void pttListeningChanged();

private:
    void whenLoaded(std::function<void()> step);
    void choose(const StringKey &key, QStringList (voice::AudioDevice::*names)() const,
                void (voice::AudioDevice::*set)(int), int index);
    QString hint(const StringKey &key, const QStringList &names) const;
    double number(const NumberSetting &setting) const;
    void setNumber(const NumberSetting &setting, double value);
    void onKeyCaptured(const QString &key);

    AppConfig &m_config;
    voice::AudioDevice &m_devices;
    input::PttService &m_ptt;
    bool m_pttListening = false;
};

} // namespace tarvo::ui::viewmodel
