#pragma once

#include "AppConfig.h"
#include "input/PttHandler.h"
#include "input/PttService.h"
#include "model/RemoteAircraft.h"
#include "network/ApiService.h"
#include "network/SwiftAircraftIcaoService.h"
#include "support/ManualClock.h"
#include "support/ScriptedInput.h"
#include "ui/viewmodel/CompactViewModel.h"
#include "ui/viewmodel/DashboardViewModel.h"
#include "ui/viewmodel/LeaveQuestion.h"
#include "ui/viewmodel/MessagesPageViewModel.h"
#include "ui/viewmodel/PilotOverview.h"
#include "ui/viewmodel/ServerPageViewModel.h"
#include "ui/viewmodel/SettingsViewModel.h"
#include "ui/viewmodel/SimulatorPageViewModel.h"
#include "ui/viewmodel/SoundsViewModel.h"
#include "ui/viewmodel/StatusViewModel.h"
#include "ui/viewmodel/Tour.h"
#include "ui/viewmodel/VoiceServiceViewModel.h"
#include "ui/viewmodel/VoiceSettingsViewModel.h"
#include "voice/client/VoiceClient.h"
#include "voice/engine/AudioDevice.h"
#include "voice/engine/SoundThread.h"

#include <QImage>
#include <QQuickItem>
#include <QQuickView>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

namespace tarvo::test {

/// Gives the picture back; in the folder of TARVO_SHOTS, when that is set, it is kept under this name.
QImage keep(const QImage &picture, const QString &name);

/// Dashboard.qml in a window of its own, over real view models.
class PageHarness
{
public:
    /// What the context properties hold.
    enum class Backends
    {
        Present,
        Null,   ///< named, but null
        Absent, ///< not even named
    };

    /// Opens in this mode; "NONE" is the choice of the simulator.
    explicit PageHarness(const QString &mode = u"NONE"_qs, QSize size = {1280, 800},
                         Backends backends = Backends::Present);

    ui::DashboardViewModel &dashboard() { return m_dashboard; }
    ui::ServerPageViewModel &server() { return m_server; }
    ui::MessagesPageViewModel &messages() { return m_messages; }
    ui::SimulatorPageViewModel &simulator() { return m_simulator; }
    ui::LeaveQuestion &leave() { return m_leave; }
    ui::PilotOverview &overview() { return m_overview; }
    ui::CompactViewModel &compact() { return m_compact; }
    /// It has not begun.
    ui::Tour &tour() { return m_tour; }
    ui::SoundsViewModel &sounds() { return m_sounds; }
    ui::StatusViewModel &status() { return m_status; }
    ui::VoiceServiceViewModel &voice() { return m_voice; }
    /// What the voice page hears of; a test raises its signals.
    voice::VoiceClient &voiceClient() { return m_voiceClient; }
    ui::viewmodel::SettingsViewModel &settings() { return m_settings; }
    ui::viewmodel::VoiceSettingsViewModel &voiceSettings() { return m_voiceSettings; }
    /// The keys and mouse buttons of the desktop.
    ScriptedInput &input() { return m_input; }
    AppConfig &config() { return m_config; }
    /// Everything that the QML engine has complained about.
    QStringList complaints() const { return m_complaints; }

    void fillAccount();
    void fillFlight();
    void connectToNetwork();
    /// A turning climb in this mode, with everything that the simulator page shows.
    void fillSimulator(const QString &mode);
    /// `count` aircraft around that flight, each at another bearing, distance and height.
    void fillTraffic(int count);
    /// A voice session in which the tower speaks to the pilot.
    void fillVoice();
    /// The devices anew, by the settings, and a key for push-to-talk.
    void fillVoiceSettings();
    /// Opens the section with this title in the sidebar, by a click.
    void openSection(const QString &title);

    /// The visible item with this object name, or null.
    QQuickItem *item(const QString &objectName) const;
    /// All visible items with this object name.
    QList<QQuickItem *> items(const QString &objectName) const;
    /// The visible item that shows exactly this text, or null.
    QQuickItem *itemWithText(const QString &text) const;
    /// All visible items that show text.
    QList<QQuickItem *> texts() const;
    /// All visible items of a window that show text.
    static QList<QQuickItem *> textsOf(const QQuickWindow &window);
    /// Texts that reach beyond their own box without being cut there, or beyond the window's sides.
    QStringList textsOutOfBounds() const;
    /// Lets what waits for the next turn of the loop happen, and the layout with it.
    void settle();
    void click(QQuickItem *item);
    /// Presses Tab, or Shift and Tab, until this item has the focus; false after a whole round.
    bool tabTo(const QString &objectName, bool backwards = false);
    /// Types Latin text into the item that has the focus.
    void type(const QString &text);
    /// Holds a key until the keyboard has repeated it three times.
    void hold(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    /// Draws the window; kept in the folder of TARVO_SHOTS, when that is set, under this name.
    QImage grab(const QString &name);

private:
    /// Two sound drivers, with some devices.
    void readDevices();

    QTemporaryDir m_folder;
    AppConfig m_config;
    network::SwiftAircraftIcaoService m_icao;
    ManualClock m_clock;
    ui::DashboardViewModel m_dashboard;
    ui::ServerPageViewModel m_server;
    ui::MessagesPageViewModel m_messages;
    ui::SimulatorPageViewModel m_simulator;
    ui::CompactViewModel m_compact{m_messages};
    ui::SoundsViewModel m_sounds;
    ui::Tour m_tour;
    ui::StatusViewModel m_status;
    ui::LeaveQuestion m_leave;
    ui::PilotOverview m_overview;
    ScriptedInput m_input;
    input::PttHandler m_pttHandler{m_input.source()};
    input::PttService m_ptt{m_pttHandler};
    std::shared_ptr<voice::SoundThread> m_sound = std::make_shared<voice::SoundThread>();
    voice::AudioDevice m_devices{m_config, m_sound};
    voice::VoiceClient m_voiceClient{m_config, m_sound};
    ui::VoiceServiceViewModel m_voice{&m_voiceClient, m_ptt, m_devices, m_config, nullptr, m_clock};
    network::ApiService m_api{m_config};
    ui::viewmodel::SettingsViewModel m_settings{m_config, m_api, {}};
    ui::viewmodel::VoiceSettingsViewModel m_voiceSettings{m_config, m_devices, m_ptt};
    QStringList m_complaints;

public:
    QQuickView view; ///< the last member: the pages go before the models that they show
};

} // namespace tarvo::test
