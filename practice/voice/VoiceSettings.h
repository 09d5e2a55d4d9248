#pragma once

namespace tarvo::practice {

/// What happens to the datagrams that the voice server sends, as on a bad line.
struct WeatherSettings
{
    double lossPercent = 0;
    int jitterMs = 0; ///< each datagram is late by up to this, so that they may overtake each other
    double duplicatePercent = 0;
    unsigned seed = 4711; ///< the same weather every time
};

/// What the voice server allows.
struct VoiceSettings
{
    int tokenMs = 10'000;   ///< a client whose first line hasn't come by then is sent away
    int silenceMs = 60'000; ///< a client that sends nothing for so long is sent away; it pings every 15 s
    int maxClients = 64;
    int maxLineBytes = 4096;         ///< a longer line is dropped
    int maxQueuedBytes = 1 << 18;    ///< a client that lets more pile up is cut off
    int maxLinesPerSecond = 100;     ///< a client that sends more is cut off; bursts of twice as many are let through
    int maxBadLines = 20;            ///< so many malformed lines end a session
    int maxDatagramsPerSecond = 200; ///< of one client; the rest is dropped. A voice is 50
    WeatherSettings weather;
};

/// Those who speak.
struct VoicePeopleSettings
{
    static constexpr int mostSpeakers = 100;
    static constexpr int mostFrequencies = 100;

    bool present = true;     ///< tower, ATIS and radio check
    int greetingMs = 1'500;  ///< the tower greets so long after a pilot has tuned it
    int answerMs = 1'000;    ///< tower and radio check answer so long after a pilot let go of the key
    int atisPauseMs = 1'000; ///< before each turn of the ATIS
    int speakers = 0;        ///< a crowd that speaks without end, for load tests
    int frequencies = 1;     ///< on so many frequencies, from 124.000 MHz on, 25 kHz apart
};

} // namespace tarvo::practice
