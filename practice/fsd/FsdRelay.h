#pragma once

#include <QStringList>

namespace tarvo::practice {

class FsdResident;
class FsdSession;
class Roster;
struct FsdClientRecord;
struct FsdSettings;

/// A resident's position.
struct FsdReport
{
    const FsdResident *from;
    QByteArray line; ///< with its line end
};

/// Carries what one client sends to those who should get it, and asks pilots near each other for fast positions. What
/// residents say goes to the sessions alone, so that a crowd costs no more than what it sends.
class FsdRelay
{
public:
    FsdRelay(const Roster &roster, const FsdSettings &settings) : m_roster(roster), m_settings(settings) {}

    void toAll(const FsdClientRecord &from, const QString &line) const;
    void toRange(const FsdSession &from, const QString &line) const;
    void toControllers(const FsdSession &from, const QString &line) const;
    /// To one callsign; the sender gets "$ER" when there is no such client.
    void toCallsign(FsdSession &from, const QString &callsign, const QString &line) const;
    /// By the recipient's form: a callsign, "@..." for all in range, or "*..." for all.
    void toRecipient(FsdSession &from, const QString &recipient, const QString &line) const;
    /// To the residents that hear a call to everybody: those that are no crowd.
    void toResidents(const QString &line) const;

    /// What a resident says: a position to all in range, else by the recipient's form. Returns false for a line that
    /// reaches nobody.
    bool say(const FsdResident &from, const QString &line) const;
    /// Positions of many residents, each with its line in Latin-1, in one go.
    void sayPositions(const QList<FsdReport> &reports) const;

    /// Tells the others of a newcomer and him of them.
    void introduce(FsdSession &newcomer) const;
    void introduce(const FsdResident &newcomer) const;
    /// Tells the others that a client is gone.
    void farewell(const FsdClientRecord &gone) const;
    /// Starts and stops fast positions as pilots come near each other and part.
    void updateFast() const;

private:
    void toRangeOfResidents(const FsdSession &from, const QString &line) const;
    static void deliver(bool quietly, FsdSession &to, const QString &line);
    bool isNearSession(const FsdClientRecord &pilot) const;
    bool isNearResident(const FsdClientRecord &pilot) const;
    double fastRange(const FsdClientRecord &pilot) const;

    const Roster &m_roster;
    const FsdSettings &m_settings;
};

} // namespace tarvo::practice
