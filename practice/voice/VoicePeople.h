#pragma once

#include "common/Clock.h"
#include "practice/voice/PilotCalls.h"
#include "practice/voice/Speech.h"
#include "practice/voice/Transmission.h"
#include "practice/voice/VoiceSettings.h"

#include <QObject>
#include <QSet>
#include <QTimer>

#include <vector>

namespace tarvo::practice {

class VoiceServer;

/// Those who speak on the practice network: Beijing's tower, which greets and answers, its ATIS, the radio check, a
/// crowd, and whoever a developer lets speak.
class VoicePeople : public QObject
{
    Q_OBJECT

public:
    static constexpr int towerFrequency = 118'500; ///< kHz, as are the others
    static constexpr int atisFrequency = 127'600;
    static constexpr int radioCheckFrequency = 122'800;

    /// Server and clock must outlive it.
    VoicePeople(VoiceServer &server, const VoicePeopleSettings &settings,
                const common::Clock &clock = common::systemClock(), QObject *parent = nullptr);

    void start();
    /// Everybody falls silent.
    void stop();
    /// Says what is due by now. Called by a timer; a test with a clock of its own may call it.
    void step();

    /// All of them say the phrase at once. False when there is no such phrase, for a frequency of 200000 kHz or more,
    /// and for a callsign that is no good.
    bool speak(const QStringList &callsigns, int frequency, const QString &phrase);
    const SpeechBook &phrases() const { return m_phrases; }

signals:
    /// Somebody begins or ends to speak on a frequency: one of these people, or a pilot who calls the tower or wants
    /// his radio checked. The crowd is left out.
    void began(const QString &callsign, int frequency);
    void ended(const QString &callsign, int frequency);

private:
    /// Something that the tower will say as soon as its frequency is free.
    struct TowerPhrase
    {
        qint64 dueMs; ///< steady time
        Speech speech;
    };

    void onTuned(const QString &callsign, int frequency, bool receive);
    void onVoice(const QString &callsign, const voice::VoicePacket &packet);
    void hearCalls(qint64 now);
    void speakAsTower(qint64 now);
    void speakAsAtis(qint64 now);
    void begin(const std::string &callsign, int frequency, const Speech &speech, qint64 startMs);
    void end(bool (*isToEnd)(const Transmission &));
    void addCrowd(qint64 now);
    bool isSpeaking(const std::string &callsign) const;

    VoiceServer &m_server;
    VoicePeopleSettings m_settings;
    const common::Clock &m_clock;
    SpeechBook m_phrases;
    PilotCalls m_calls;
    std::vector<Transmission> m_transmissions;
    QSet<QString> m_greeted;           ///< by the tower, since they are connected
    QList<TowerPhrase> m_towerPhrases; ///< what it will say
    int m_answers = 0;                 ///< of the tower so far
    QTimer m_timer;
};

} // namespace tarvo::practice
