#pragma once

#include "common/Clock.h"
#include "practice/people/PeopleSettings.h"

#include <QObject>
#include <QTimer>

#include <memory>
#include <vector>

namespace tarvo::practice {

class Resident;
class FsdServer;
class ResidentSupervisor;

/// The people who make the practice network a place: four pilots at Beijing Capital, three controllers and a
/// supervisor, all of them residents of the FSD server.
class Residents : public QObject
{
    Q_OBJECT

public:
    /// The server and the clock must outlive it.
    Residents(FsdServer &server, const ResidentSettings &settings, const common::Clock &clock = common::systemClock(),
              QObject *parent = nullptr);
    ~Residents() override;

    /// They come in and begin. Whose callsign is taken stays away.
    void start();
    /// They leave.
    void stop();
    /// Says what is due by now. Called by a timer; a test with a clock of its own may call it.
    void step();
    /// The supervisor says it to all. Nothing before start().
    void broadcast(const QString &text);

private:
    bool add(std::unique_ptr<Resident> member);

    FsdServer &m_server;
    ResidentSettings m_settings;
    const common::Clock &m_clock;
    std::vector<std::unique_ptr<Resident>> m_members;
    ResidentSupervisor *m_supervisor = nullptr; ///< one of them
    QTimer m_timer;
};

} // namespace tarvo::practice
