#pragma once

#include "practice/xplane/PluginMessage.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QVariantList>

namespace tarvo::practice {

/// An aircraft as the plugin draws it.
struct DrawnAircraft
{
    QString callsign;
    QString airline;
    QString type;
    double latitude = 0;  ///< degrees
    double longitude = 0; ///< degrees
    double altitudeM = 0; ///< metres above mean sea level
    double heading = 0;   ///< degrees, as are the next two
    double bank = 0;
    double pitch = 0;
    double groundSpeed = 0;     ///< knots; 0 before the first position
    QString moved;              ///< the message that it has its place from: "ADD", "POS" or "FSTPOS"
    QVariantList movement;      ///< that message's arguments, callsign included
    int positions = 0;          ///< how often it was moved
    QVariantList configuration; ///< the eleven values after ACCONF's callsign, merged; invalid where never told
};

/// The aircraft that the plugin draws, in the order in which they were added.
class DrawnTraffic
{
public:
    static constexpr qsizetype mostAircraft = 10'000; ///< further ones aren't drawn

    /// Draws the aircraft of an ADD, or draws one anew that is there already.
    void add(const QVariantList &arguments);
    void remove(const QString &callsign);
    /// Moves and changes what is drawn by "POS", "FSTPOS", "ACCONF" and "DELALL". Others, and messages about an
    /// aircraft that isn't drawn, are ignored.
    void take(const PluginMessage &message);
    void clear();

    QList<DrawnAircraft> all() const;
    bool contains(const QString &callsign) const { return m_aircraft.contains(callsign); }
    /// One without a callsign when it isn't drawn.
    DrawnAircraft find(const QString &callsign) const { return m_aircraft.value(callsign); }

private:
    void move(const PluginMessage &message, qsizetype heading, qsizetype groundSpeed);
    void configure(const QVariantList &arguments);

    QHash<QString, DrawnAircraft> m_aircraft;
    QStringList m_order;
};

} // namespace tarvo::practice
