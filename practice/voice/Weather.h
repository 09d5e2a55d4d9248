#pragma once

#include "practice/voice/VoiceSettings.h"

#include <QByteArray>
#include <QHostAddress>
#include <QList>

#include <random>

namespace tarvo::practice {

/// Where a client's datagrams come from and go to.
struct VoiceEndpoint
{
    QHostAddress address;
    quint16 port = 0;

    bool operator==(const VoiceEndpoint &) const = default;
};

/// A datagram on its way to a client.
struct VoiceDatagram
{
    QByteArray bytes;
    VoiceEndpoint to;
};

/// Loses, delays and doubles datagrams as its settings say.
class Weather
{
public:
    static constexpr qsizetype mostDelayed = 10'000; ///< the oldest are sent early when there are more

    explicit Weather(const WeatherSettings &settings) : m_settings(settings), m_random(settings.seed) {}

    void change(const WeatherSettings &settings) { m_settings = settings; }
    const WeatherSettings &settings() const { return m_settings; }
    /// `now` is steady time, ms.
    void put(const VoiceDatagram &datagram, qint64 now);
    /// What is to be sent by now, in its order.
    QList<VoiceDatagram> takeDue(qint64 now);
    bool isEmpty() const { return m_delayed.isEmpty(); }

private:
    struct Delayed
    {
        qint64 dueMs;
        VoiceDatagram datagram;
    };

    bool happens(double percent);
    void delay(const VoiceDatagram &datagram, qint64 now);

    WeatherSettings m_settings;
    std::mt19937 m_random;
    QList<Delayed> m_delayed; ///< the first due comes first
};

} // namespace tarvo::practice
