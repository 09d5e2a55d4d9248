#include "practice/voice/VoicePeople.h"

#include "practice/voice/VoiceServer.h"

#include <algorithm>

namespace tarvo::practice {

namespace {
constexpr int stepMs = 5;
constexpr std::size_t shortestCall = 10;  // frames; less is a key that was only touched
constexpr qsizetype mostTowerPhrases = 3; // he doesn't answer everybody when many call at once
constexpr std::size_t mostTransmissions = 200;
constexpr int frequencyLimit = 200'000;
constexpr int crowdFrequency = 124'000; // kHz; the next ones follow 25 kHz apart
constexpr int channelWidth = 25;
constexpr std::size_t mostCallsignBytes = 254;
const std::string tower = "ZBAA_TWR";
const std::string atis = "ZBAA_ATIS";
const std::string radioCheck = "RADIO_CHECK";

const char16_t *const towerAnswers[] = {u"tower-answer-1", u"tower-answer-2", u"tower-answer-3"};

std::string crowdCallsign(int index)
{
    constexpr int firstNumber = 7000; // flight numbers of nobody else
    return "CSN" + std::to_string(firstNumber + index);
}
} // namespace

VoicePeople::VoicePeople(VoiceServer &server, const VoicePeopleSettings &settings, const common::Clock &clock,
                         QObject *parent)
    : QObject(parent), m_server(server), m_settings(settings), m_clock(clock)
{
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &VoicePeople::step);
    if (!m_settings.present)
        return;
    connect(&server, &VoiceServer::tuned, this, &VoicePeople::onTuned);
    connect(&server, &VoiceServer::voiceReceived, this, &VoicePeople::onVoice);
    connect(&server, &VoiceServer::clientGreeted, this,
            [this](const QString &callsign) { m_greeted.remove(callsign); });
}

void VoicePeople::start()
{
    addCrowd(m_clock.steadyMs());
    m_timer.start(stepMs);
}

void VoicePeople::stop()
{
    m_timer.stop();
    m_transmissions.clear();
    m_towerPhrases.clear();
    m_greeted.clear();
    m_calls = {};
}

void VoicePeople::step()
{
    const qint64 now = m_clock.steadyMs();
    if (m_settings.present) {
        hearCalls(now);
        speakAsTower(now);
        speakAsAtis(now);
    }
    for (Transmission &transmission : m_transmissions) {
        while (const auto packet = transmission.takeDue(now))
            m_server.say(*packet);
    }
    end([](const Transmission &one) { return one.isOver(); });
}

void VoicePeople::begin(const std::string &callsign, int frequency, const Speech &speech, qint64 startMs)
{
    if (m_transmissions.size() >= mostTransmissions)
        return;
    m_transmissions.emplace_back(callsign, frequency, speech, startMs);
    emit began(QString::fromStdString(callsign), frequency);
}

void VoicePeople::end(bool (*isToEnd)(const Transmission &))
{
    const auto first = std::stable_partition(m_transmissions.begin(), m_transmissions.end(),
                                             [isToEnd](const Transmission &one) { return !isToEnd(one); });
    const std::vector<Transmission> gone(first, m_transmissions.end());
    m_transmissions.erase(first, m_transmissions.end());
    for (const Transmission &one : gone)
        emit ended(QString::fromStdString(one.callsign()), one.frequency());
}

bool VoicePeople::speak(const QStringList &callsigns, int frequency, const QString &phrase)
{
    const Speech speech = m_phrases.find(phrase);
    const bool callsignsFit = std::all_of(callsigns.begin(), callsigns.end(), [](const QString &callsign) {
        const auto bytes = static_cast<std::size_t>(callsign.toUtf8().size());
        return bytes > 0 && bytes <= mostCallsignBytes;
    });
    const std::size_t after = m_transmissions.size() + static_cast<std::size_t>(callsigns.size());
    if (!speech || frequency < 0 || frequency >= frequencyLimit || callsigns.isEmpty() || !callsignsFit ||
        after > mostTransmissions)
        return false;
    for (const QString &callsign : callsigns)
        begin(callsign.toStdString(), frequency, speech, m_clock.steadyMs());
    return true;
}

void VoicePeople::onTuned(const QString &callsign, int frequency, bool receive)
{
    if (frequency != towerFrequency || !receive || m_greeted.contains(callsign))
        return;
    m_greeted.insert(callsign);
    m_towerPhrases.append({m_clock.steadyMs() + m_settings.greetingMs, m_phrases.find(u"tower-greeting"_qs)});
}

void VoicePeople::onVoice(const QString &callsign, const voice::VoicePacket &packet)
{
    const bool isForUs = packet.frequency == towerFrequency || packet.frequency == radioCheckFrequency;
    if (isForUs && m_calls.hear(callsign, packet, m_clock.steadyMs()))
        emit began(callsign, packet.frequency);
}

void VoicePeople::hearCalls(qint64 now)
{
    for (PilotCall &call : m_calls.takeEnded(radioCheckFrequency, m_settings.answerMs, now)) {
        emit ended(call.callsign, call.frequency);
        begin(radioCheck, radioCheckFrequency, std::make_shared<const SpeechFrames>(std::move(call.frames)), now);
    }
    for (const PilotCall &call : m_calls.takeEnded(towerFrequency, m_settings.answerMs, now)) {
        emit ended(call.callsign, call.frequency);
        if (call.frames.size() < shortestCall || m_towerPhrases.size() >= mostTowerPhrases)
            continue;
        const auto answer = static_cast<std::size_t>(m_answers++) % std::size(towerAnswers);
        m_towerPhrases.append({now, m_phrases.find(QString::fromUtf16(towerAnswers[answer]))});
    }
}

void VoicePeople::speakAsTower(qint64 now)
{
    if (m_towerPhrases.isEmpty() || m_towerPhrases.constFirst().dueMs > now || isSpeaking(tower) ||
        !m_calls.isFree(towerFrequency, now))
        return;
    const Speech speech = m_towerPhrases.takeFirst().speech;
    if (speech && !m_server.receivers(towerFrequency).isEmpty())
        begin(tower, towerFrequency, speech, now);
}

void VoicePeople::speakAsAtis(qint64 now)
{
    const bool wanted = !m_server.receivers(atisFrequency).isEmpty();
    const Speech speech = m_phrases.find(u"atis"_qs);
    if (!wanted)
        end([](const Transmission &one) { return one.callsign() == atis; });
    else if (speech && !isSpeaking(atis))
        begin(atis, atisFrequency, speech, now + m_settings.atisPauseMs);
}

void VoicePeople::addCrowd(qint64 now)
{
    const Speech speech = m_phrases.find(u"pilot-call"_qs);
    constexpr std::size_t apart = 37; // frames, so that they don't all say the same at once
    for (int i = 0; speech && i < m_settings.speakers; ++i) {
        const int frequency = crowdFrequency + channelWidth * (i % std::max(1, m_settings.frequencies));
        const int share = Transmission::frameMs * i / m_settings.speakers; // spread over a frame's time
        m_transmissions.emplace_back(crowdCallsign(i), frequency, speech, now + share)
            .loop(apart * static_cast<std::size_t>(i));
    }
}

bool VoicePeople::isSpeaking(const std::string &callsign) const
{
    return std::any_of(m_transmissions.begin(), m_transmissions.end(),
                       [&callsign](const Transmission &one) { return one.callsign() == callsign; });
}

} // namespace tarvo::practice
