#pragma once

#include "practice/fsd/FsdResident.h"
#include "practice/people/CrowdTrack.h"

namespace tarvo::fsd::pdu {
struct ClientQuery;
}

namespace tarvo::practice {

class FsdServer;

/// One of a crowd: a place on the track and short answers.
class CrowdPilot : public FsdResident
{
public:
    /// The server must outlive it.
    CrowdPilot(int number, const CrowdTrack::Place &place, FsdServer &server);

    void hear(const QString &line) override;

    const CrowdTrack::Place &place() const { return m_place; }
    void moveTo(const FsdPosition &where) { position = where; }
    /// Identifier and callsign of a fast position.
    const QByteArray &fastStart() const { return m_fastStart; }
    /// A whole slow position.
    QByteArray slowReport(quint32 attitude) const;

private:
    void answer(const fsd::pdu::ClientQuery &query);

    FsdServer &m_server;
    CrowdTrack::Place m_place;
    QString m_type;
    QByteArray m_fastStart;
};

} // namespace tarvo::practice
