#pragma once

#include "practice/people/Resident.h"

namespace tarvo::practice {

/// A supervisor: answers calls for help and has something to tell to all now and then. Reports no position, so that
/// nobody has him on a list of stations.
class ResidentSupervisor : public Resident
{
public:
    ResidentSupervisor(FsdServer &server, const ResidentSettings &settings, const common::Clock &clock);

    void step() override;
    void broadcast(const QString &text);

protected:
    void onWallop(const QString &from, const QString &text) override;

private:
    qint64 m_nextBroadcastMs; ///< steady time
    qsizetype m_said = 0;     ///< broadcasts so far
};

} // namespace tarvo::practice
