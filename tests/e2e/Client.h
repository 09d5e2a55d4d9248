#pragma once

#include "e2e/ComposedClient.h"
#include "practice/PracticeNetwork.h"

namespace tarvo::test {

/// The practice network on free ports, and what its FSD server hears.
struct Network
{
    practice::PracticeNetwork practice;
    QStringList heard; ///< lines of all clients, in order, without the configuration messages to all
    QStringList toAll; ///< the configuration messages to all; they come whenever a light goes on

    explicit Network(const common::Clock &clock = common::systemClock(),
                     const practice::PracticeSettings &settings = quietSettings())
        : practice(settings, clock)
    {
        started = practice.start();
        listenTo(practice.fsd());
    }

    void listenTo(practice::FsdServer &server)
    {
        QObject::connect(&server, &practice::FsdServer::lineReceived, &server,
                         [this](const QString &, const QString &line) {
                             (line.contains(QStringLiteral(":@94386:")) ? toAll : heard) << line;
                         });
    }

    static practice::PracticeSettings quietSettings()
    {
        practice::PracticeSettings settings = practice::PracticeSettings::ephemeral();
        settings.fsd.pingIntervalMs = 0;
        settings.fsd.challengeIntervalMs = 0;
        settings.fsd.silenceMs = 1 << 30; // a test may let hours pass
        // Many aircraft that a test makes up are a flood of questions to nobody.
        settings.fsd.maxLinesPerSecond = 100'000;
        settings.fsd.maxBadLines = 1'000'000;
        return settings;
    }

    /// The heard lines that begin so.
    QStringList linesOf(const QString &prefix) const
    {
        QStringList found;
        for (const QString &line : heard) {
            if (line.startsWith(prefix))
                found << line;
        }
        return found;
    }

    /// What a client is told.
    operator Place() // NOLINT(google-explicit-constructor): wherever a client is made
    {
        Place place;
        place.endpoints.apiBaseUrl = practice.account().baseUrl();
        place.endpoints.fsdHost = fsdHost;
        place.endpoints.fsdPort = practice.replay() ? practice.replay()->port() : practice.fsd().port();
        place.endpoints.voiceHost = QStringLiteral("127.0.0.1");
        place.endpoints.voiceTcpPort = practice.voice().tcpPort();
        place.endpoints.voiceUdpPort = practice.voice().udpPort();
        place.endpoints.localPluginUrl = practice.pluginUrl();
        place.xplanePort = practice.xplane().udpPort();
        return place;
    }

    bool started = false;
    QString fsdHost = QStringLiteral("127.0.0.1"); ///< what a client connects to: an address or a name
};

} // namespace tarvo::test
