#pragma once

#include "practice/Roster.h"

#include <QStringList>

namespace tarvo::practice {

/// Carries what one client sends to those who should get it, and asks pilots near each other for fast positions.
class FsdRelay
{
public:
    FsdRelay(const Roster &roster, const FsdSettings &settings) : m_roster(roster), m_settings(settings) {}

    void toAll(const FsdSession &from, const QString &line) const;
    void toRange(const FsdSession &from, const QString &line) const;
    void toControllers(const FsdSession &from, const QString &line) const;
    /// To one callsign; the sender gets "$ER" when there is no such client.
    void toCallsign(FsdSession &from, const QString &callsign, const QString &line) const;
    /// By the recipient's form: a callsign, "@..." for all in range, or "*..." for all.
    void toRecipient(FsdSession &from, const QString &recipient, const QString &line) const;

    /// Tells the others of a newcomer and him of them.
    void introduce(FsdSession &newcomer) const;
    /// Tells the others that a client is gone.
    void farewell(const FsdSession &gone) const;
    /// Starts and stops fast positions as pilots come near each other and part.
    void updateFast() const;

private:
    bool isNearSomebody(const FsdSession &pilot) const;

    const Roster &m_roster;
    const FsdSettings &m_settings;
};

} // namespace tarvo::practice
