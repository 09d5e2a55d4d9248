#pragma once

#include "voice/engine/SoundSystem.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <memory>

namespace tarvo {
class AppConfig;
struct StringKey;
} // namespace tarvo

namespace tarvo::voice {

class Mailbox;
class SoundLease;
class SoundThread;

/// The devices that PortAudio offers and those that the pilot chose. Reads the choice from the settings and never
/// writes it. Its list indices count what pages show: 0 is "Default", n is entry n - 1 of the list.
class AudioDevice : public QObject
{
    Q_OBJECT

public:
    /// `config` outlives it.
    AudioDevice(AppConfig &config, std::shared_ptr<SoundThread> sound, QObject *parent = nullptr);
    ~AudioDevice() override;

    /// Returns at once; the signals come when the sound system has answered, which is asked until it takes the
    /// question. Nothing once loaded or loading.
    void load();
    bool isLoaded() const { return m_isLoaded; }
    /// PortAudio has searched again: reads what it offers now, and announces it with the same choice, as far as that is
    /// there. Nothing before the load.
    void reload();

    // For loaded devices: what is chosen before the load has no list to be found in. An index that isn't in the list is
    // ignored.
    /// Offers the devices of another driver, and chooses its defaults.
    void setDriver(int listIndex);
    // An input or output 0 raises no signal: its stream keeps its device until the next start. Deliberate.
    void setInput(int listIndex);
    void setOutputHeadphone(int listIndex);
    void setOutputSpeaker(int listIndex);

    // -1 before the devices are loaded.
    int driverIndex() const { return m_driverIndex; }
    int inputIndex() const { return m_input.index; }
    int headphoneIndex() const { return m_headphone.index; }
    int speakerIndex() const { return m_speaker.index; }

    /// PortAudio's PaHostApiTypeId of the driver; -1 without one.
    int driverType() const { return m_driverType; }
    // "Default", or the device's.
    QString inputName() const { return m_input.name; }
    QString headphoneName() const { return m_headphone.name; }
    QString speakerName() const { return m_speaker.name; }

    // PortAudio's indices of what is chosen; -1 for the default.
    int inputDeviceId() const { return m_input.deviceId(); }
    int headphoneDeviceId() const { return m_headphone.deviceId(); }
    int speakerDeviceId() const { return m_speaker.deviceId(); }

    QStringList driverNames() const;
    // All but the drivers begin with "Default".
    QStringList inputNames() const { return m_input.names(); }
    QStringList headphoneNames() const { return m_headphone.names(); }
    QStringList speakerNames() const { return m_speaker.names(); }

    /// Raises the last four signals for what is chosen now.
    void announceChosen();

    /// What PortAudio offers has been read. The sound thread's word, and a test's.
    void onRead(const QList<HostApiInfo> &drivers, const QList<DeviceInfo> &devices);

signals:
    void deviceListChanged();
    void deviceChanged();
    /// Whether the pilot has chosen one that isn't there, and has the default instead.
    void missed(bool isAny);
    // PortAudio's index, the driver's default for list index 0; negative when that has none.
    void inputDeviceChanged(int deviceIndex);
    void outputHeadphoneDeviceChanged(int deviceIndex);
    void outputSpeakerDeviceChanged(int deviceIndex);
    /// Behind all that the load has raised; once.
    void loaded();

private:
    using DeviceSignal = void (AudioDevice::*)(int);

    /// The devices of one direction and the chosen one.
    struct Direction
    {
        QList<DeviceInfo> list;
        QString wanted; ///< the name of the pilot's, which may not be there
        QString name;
        int index = -1;

        int deviceId() const;
        QStringList names() const;
        bool isMissed() const { return name != wanted; }
        void choose(int listIndex);
        void chooseWanted();
    };

    void read();
    void takeStoredChoice();
    void rebuildLists();
    void announceAll();
    void set(Direction AudioDevice::*direction, DeviceSignal changed, int listIndex);

    AppConfig &m_config;
    std::shared_ptr<SoundThread> m_sound;
    std::shared_ptr<Mailbox> m_mailbox;
    std::unique_ptr<SoundLease> m_lease; ///< from the load on, so that PortAudio's indices keep their meaning

    QList<HostApiInfo> m_driverList;
    QList<DeviceInfo> m_devices; ///< of all drivers
    Direction m_input;
    Direction m_headphone;
    Direction m_speaker;
    int m_driverType = -1;
    int m_driverIndex = -1;
    bool m_isLoading = false;
    bool m_isLoaded = false;
    QTimer m_again{this}; ///< behind a question that the sound thread had no room for
};

} // namespace tarvo::voice
