#include "practice/people/ResidentSupervisor.h"

#include "fsd/pdu/BroadcastMessage.h"
#include "fsd/pdu/FsdLine.h"
#include "practice/people/Due.h"

namespace tarvo::practice {

namespace {
const QString callsignOfAll = QStringLiteral("NET_SUP");
constexpr const char16_t *news[] = {
    u"All stations: Beijing information is on frequency, ask any controller for his ATIS.",
    u"All stations: the practice network runs as long as you like. Fly safely.",
    u"All stations: runway 36R is in use at Beijing, circuits to the left.",
};
constexpr qsizetype longestQuote = 80;
} // namespace

ResidentSupervisor::ResidentSupervisor(FsdServer &server, const ResidentSettings &settings, const common::Clock &clock)
    : Resident(controller(callsignOfAll, QStringLiteral("9000"), QStringLiteral("Supervisor")), server, settings,
               clock),
      m_nextBroadcastMs(now() + settings.broadcastIntervalMs)
{
}

void ResidentSupervisor::step()
{
    Resident::step();
    if (isDue(m_nextBroadcastMs, settings().broadcastIntervalMs, now()))
        broadcast(QString::fromUtf16(news[m_said++ % std::ssize(news)]));
}

void ResidentSupervisor::broadcast(const QString &text)
{
    say(fsd::toLine(fsd::pdu::BroadcastMessage(callsign(), text)));
}

void ResidentSupervisor::onWallop(const QString &from, const QString &text)
{
    writeTo(from, QStringLiteral("Supervisor here, %1. I got: %2").arg(from, text.left(longestQuote)));
}

} // namespace tarvo::practice
