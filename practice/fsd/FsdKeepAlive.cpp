#include "practice/fsd/FsdKeepAlive.h"

#include "common/Callsign.h"
#include "fsd/pdu/AuthChallenge.h"
#include "fsd/pdu/FsdLine.h"
#include "fsd/pdu/Ping.h"
#include "practice/fsd/FsdSession.h"
#include "practice/fsd/FsdSettings.h"

#include <QRandomGenerator>

namespace tarvo::practice {

using fsd::toLine;

namespace {
/// The interval, up to a quarter shorter or longer.
qint64 jittered(int intervalMs)
{
    return intervalMs * 3 / 4 + QRandomGenerator::global()->bounded(intervalMs / 2 + 1);
}
} // namespace

QString FsdKeepAlive::newChallenge()
{
    return QStringLiteral("%1").arg(QRandomGenerator::global()->generate64(), 16, 16, QLatin1Char('0'));
}

void FsdKeepAlive::begin(FsdSession &session) const
{
    const qint64 now = m_clock.steadyMs();
    session.nextPingMs = now + m_settings.pingIntervalMs;
    session.nextChallengeMs = now + jittered(m_settings.challengeIntervalMs);
}

void FsdKeepAlive::step(FsdSession &session) const
{
    const qint64 now = m_clock.steadyMs();
    const bool complete = session.loggedIn() && !session.announcedCallsign.isEmpty();
    if (!complete && now - session.connectedMs > m_settings.identifyMs) {
        session.refuse(FsdError::UnauthorizedClient, {}, QStringLiteral("No identification"));
        return;
    }
    if (now - session.heardMs > m_settings.silenceMs) {
        session.cutOff(QStringLiteral("silent"));
        return;
    }
    if (!session.loggedIn())
        return;
    if (m_settings.pingIntervalMs > 0 && now >= session.nextPingMs) {
        session.nextPingMs = now + m_settings.pingIntervalMs;
        ping(session);
    }
    if (m_settings.challengeIntervalMs > 0 && now >= session.nextChallengeMs) {
        session.nextChallengeMs = now + jittered(m_settings.challengeIntervalMs);
        challenge(session);
    }
}

void FsdKeepAlive::ping(FsdSession &session) const
{
    session.send(
        toLine(fsd::pdu::Ping(common::serverCallsign, session.name(), QString::number(m_clock.wallMs() / 1000))));
}

void FsdKeepAlive::challenge(FsdSession &session) const
{
    if (!session.openChallenge.isEmpty()) {
        session.refuse(FsdError::UnauthorizedClient, {}, QStringLiteral("No answer to the challenge"));
        return;
    }
    session.openChallenge = newChallenge();
    session.send(toLine(fsd::pdu::AuthChallenge(common::serverCallsign, session.name(), session.openChallenge)));
}

} // namespace tarvo::practice
