#pragma once

#include "common/Clock.h"
#include "practice/people/CrowdTrack.h"
#include "practice/people/PeopleSettings.h"

#include <QObject>
#include <QTimer>

#include <memory>
#include <vector>

namespace tarvo::practice {

class CrowdPilot;
class FsdServer;

/// Very many pilots around Beijing for load tests, all of them residents of the FSD server. Each sends fast positions
/// at the given rate, asked or not, and slow ones, spread evenly over time; each answers what a pilot is asked.
class Crowd : public QObject
{
    Q_OBJECT

public:
    /// The server and the clock must outlive it.
    Crowd(FsdServer &server, const CrowdSettings &settings, const common::Clock &clock = common::systemClock(),
          QObject *parent = nullptr);
    ~Crowd() override;

    void start();
    void stop();
    /// Sends what is due by now: at most one report of each kind from each pilot, whatever was missed. Called by a
    /// timer; a test with a clock of its own may call it.
    void step();

private:
    void sayFast(double seconds);
    void saySlow(double seconds);

    FsdServer &m_server;
    CrowdSettings m_settings;
    const common::Clock &m_clock;
    CrowdTrack m_track;
    std::vector<std::unique_ptr<CrowdPilot>> m_pilots;
    qint64 m_startMs = 0;  ///< steady time
    qint64 m_saidFast = 0; ///< reports so far, those left out counted
    qint64 m_saidSlow = 0;
    QTimer m_timer;
};

} // namespace tarvo::practice
