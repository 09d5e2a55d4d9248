#pragma once

#include "practice/people/Resident.h"

#include <QHash>

namespace tarvo::practice {

/// Who a resident controller is and what he serves.
struct ControllerProfile
{
    QString callsign;
    QString cid;
    QString realName;
    quint32 frequency = 0; ///< kHz
    int facility = 0;      ///< 3 ground, 4 tower, 5 approach
    int rangeNm = 0;
    double latitude = 0;  ///< degrees
    double longitude = 0; ///< degrees
    QStringList atis;
    QString logoff;    ///< when he goes home, such as "1500z"
    bool talks = true; ///< greets pilots, answers texts, calls by SELCAL
};

/// A controller: reports his position, gives his ATIS and, when he is one who talks, answers pilots. The private text
/// "SELCAL AB-CD" tells him a pilot's code, "SELCAL" alone asks him to call.
class ResidentController : public Resident
{
public:
    ResidentController(const ControllerProfile &profile, FsdServer &server, const ResidentSettings &settings,
                       const common::Clock &clock);

    void step() override;

protected:
    void onQuery(const QString &from, fsd::pdu::ClientQueryType type, const QStringList &payload) override;
    void onAnswer(const QString &from, fsd::pdu::ClientQueryType type, const QStringList &payload) override;
    void onText(const QString &from, const QString &text) override;
    void onRadio(const QString &from, const QList<quint32> &frequencies, const QString &text) override;
    void onPilotComes(const QString &callsign) override;
    void onPilotLeaves(const QString &callsign) override;

private:
    void reportPosition();
    void giveAtis(const QString &to);
    void askFrequency(const QString &pilot);
    void call(const QString &pilot, quint32 frequency);
    void callThoseWhoDidNotAnswer();

    ControllerProfile m_profile;
    qint64 m_nextPositionMs;          ///< steady time
    QHash<QString, QString> m_selcal; ///< code by callsign, of pilots who are there
    QHash<QString, qint64> m_toCall;  ///< until when a pilot may tell his frequency, by callsign
};

} // namespace tarvo::practice
