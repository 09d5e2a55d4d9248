#pragma once

#include "fsd/pdu/FastPilotPosition.h"
#include "model/AircraftConfiguration.h"
#include "practice/flight/Flight.h"
#include "practice/people/Resident.h"

namespace tarvo::practice {

/// Who a resident pilot is and what he flies.
struct PilotProfile
{
    QString callsign;
    QString cid;
    QString realName;
    QString equipment; ///< type code that he tells when asked; empty for one who doesn't know that question
    QString livery;    ///< told with it, as are the next two; may be empty
    QString csl;
    QString airline;
    QString filedType;   ///< aircraft field of his flight plan; empty for one without
    QString destination; ///< of the flight plan
    int squawk = 2000;   ///< the four digits as a decimal number
    const Pattern &pattern;
    QString startPhase; ///< of the pattern: where he is at first
};

/// A pilot who flies a pattern over and over, and reports it as clients do: slow positions all the time, fast ones when
/// asked, changes of the configuration to all.
class ResidentPilot : public Resident
{
public:
    ResidentPilot(const PilotProfile &profile, FsdServer &server, const ResidentSettings &settings,
                  const common::Clock &clock);

    void step() override;
    /// The aeroplane now.
    AircraftState state() const;

protected:
    void onQuery(const QString &from, fsd::pdu::ClientQueryType type, const QStringList &payload) override;
    void onPlaneInfoRequest(const QString &from) override;
    void onFastAsked() override;

private:
    void fileFlightPlan();
    void reportSlow(const AircraftState &aircraft);
    void reportVelocity(const AircraftState &aircraft, fsd::pdu::FastPilotPositionType movingType);
    void tellChanges(const AircraftState &aircraft);
    void tellConfiguration(const QString &to, const model::AircraftConfiguration &configuration);

    PilotProfile m_profile;
    Flight m_flight;
    double m_flightAtStart = 0; ///< seconds
    qint64 m_startMs = 0;       ///< steady time, as are the next three
    qint64 m_nextSlowMs = 0;
    qint64 m_nextFastMs = 0;
    qint64 m_nextLookMs = 0;
    model::AircraftConfiguration m_told; ///< what the others know
};

/// What a pilot's client would tell of the aeroplane, complete but without "is_full_data".
model::AircraftConfiguration configurationOf(const AircraftState &aircraft);

} // namespace tarvo::practice
