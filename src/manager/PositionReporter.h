#pragma once

#include "manager/PositionReports.h"

#include <QObject>
#include <QTimer>

#include <functional>

namespace tarvo::manager {

/// The cadence of the own aircraft's reports: slow ones as long as a session lasts, fast ones while the server asks for
/// them. Knows neither socket nor simulator.
class PositionReporter : public QObject
{
    Q_OBJECT

public:
    /// `position` is asked for the newest state once for all reports of one tick.
    explicit PositionReporter(std::function<OwnPosition()> position, QObject *parent = nullptr);

    /// Sends the first slow report and a stopped one, then goes on every 5 s, as observer every 15 s.
    void start();
    void stop();
    /// Starts the fast reports, or ends them with one stopped report.
    void setFast(bool fast);

public slots:
    void slowTick();
    void fastTick();

signals:
    /// A finished line for the server.
    void lineReady(const QString &line);

private:
    void sendSlowPosition(const OwnPosition &own);
    void sendFast(const OwnPosition &own, const fsd::pdu::FastPilotPosition &report);

    std::function<OwnPosition()> m_position;
    QTimer m_slowTimer;
    QTimer m_fastTimer;
};

} // namespace tarvo::manager
