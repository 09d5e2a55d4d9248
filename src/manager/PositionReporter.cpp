#include "manager/PositionReporter.h"

#include "fsd/pdu/ATCPosition.h"
#include "fsd/pdu/FastPilotPosition.h"
#include "fsd/pdu/FsdLine.h"
#include "fsd/pdu/PilotPosition.h"

namespace tarvo::manager {

using fsd::pdu::FastPilotPositionType;

namespace {
constexpr int pilotIntervalMs = 5000;
constexpr int observerIntervalMs = 15000;
constexpr int fastIntervalMs = 200;
} // namespace

PositionReporter::PositionReporter(std::function<OwnPosition()> position, QObject *parent)
    : QObject(parent), m_position(std::move(position)), m_slowTimer(this), m_fastTimer(this)
{
    m_slowTimer.setObjectName(QStringLiteral("slowTimer"));
    m_fastTimer.setObjectName(QStringLiteral("fastTimer"));
    m_fastTimer.setInterval(fastIntervalMs);
    m_fastTimer.setTimerType(Qt::PreciseTimer); // others interpolate between these reports
    connect(&m_slowTimer, &QTimer::timeout, this, &PositionReporter::slowTick);
    connect(&m_fastTimer, &QTimer::timeout, this, &PositionReporter::fastTick);
}

void PositionReporter::start()
{
    const OwnPosition own = m_position();
    // First the timer: a report may find the server gone, and the stop() that follows has to last.
    m_slowTimer.start(own.observer ? observerIntervalMs : pilotIntervalMs);
    sendSlowPosition(own);
    sendFast(own, stoppedReport(own));
}

void PositionReporter::stop()
{
    m_fastTimer.stop();
    m_slowTimer.stop();
}

void PositionReporter::setFast(bool fast)
{
    if (fast) {
        if (!m_fastTimer.isActive()) // a server that repeats itself must not put off the next report for ever
            m_fastTimer.start();
        return;
    }
    m_fastTimer.stop();
    const OwnPosition own = m_position();
    sendFast(own, stoppedReport(own));
}

void PositionReporter::slowTick()
{
    const OwnPosition own = m_position();
    if (own.paused)
        sendFast(own, zeroVelocityReport(own)); // also when the server hasn't asked for fast reports
    else if (isMoving(own.aircraft))
        sendFast(own, velocityReport(own, FastPilotPositionType::Slow));
    sendSlowPosition(own);
}

void PositionReporter::fastTick()
{
    const OwnPosition own = m_position();
    if (own.paused)
        sendFast(own, zeroVelocityReport(own));
    else if (isMoving(own.aircraft))
        sendFast(own, velocityReport(own, FastPilotPositionType::Fast));
    else
        sendFast(own, stoppedReport(own));
}

void PositionReporter::sendSlowPosition(const OwnPosition &own)
{
    emit lineReady(own.observer ? fsd::toLine(observerPosition(own)) : fsd::toLine(pilotPosition(own)));
}

void PositionReporter::sendFast(const OwnPosition &own, const fsd::pdu::FastPilotPosition &report)
{
    if (!own.observer)
        emit lineReady(fsd::toLine(report));
}

} // namespace tarvo::manager
