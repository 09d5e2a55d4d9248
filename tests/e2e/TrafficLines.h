#pragma once

#include "practice/xplane/PluginMessage.h"
#include "practice/xplane/PluginStandIn.h"

#include <QString>
#include <QStringList>

namespace tarvo::test {

// What another pilot and his server send, and what the plugin is to be told of it. He flies at 40 N 116.5 E,
// 10,000 feet, heading 90, nose 10 degrees up, banked 5 degrees to the left.

inline const QString cca = QStringLiteral("CCA123");

inline QString slowPosition(const QString &callsign, int knots)
{
    return QStringLiteral("@N:%1:2000:1:40.000000:116.500000:10000:%2:4173390848:100").arg(callsign).arg(knots);
}

/// `velocities`: east, up and north as they are written, such as "3.0000:0.0000:4.0000".
inline QString fastPosition(const QString &callsign, const QString &velocities,
                            const QString &identifier = QStringLiteral("^"))
{
    return identifier + callsign +
           QStringLiteral(":40.000000:116.500000:10000.00:5000.00:4173390848:%1:0.1000:0.2000:0.3000:12.00")
               .arg(velocities);
}

inline QString stoppedPosition(const QString &callsign)
{
    return QStringLiteral("#ST%1:40.000000:116.500000:10000.00:5000.00:4173390848:12.00").arg(callsign);
}

inline QString planeInfo(const QString &callsign, const QString &fields = QStringLiteral("EQUIPMENT=B738"))
{
    return QStringLiteral("#SB%1:AB1:PI:GEN:%2").arg(callsign, fields);
}

inline QString configuration(const QString &callsign, const QString &members)
{
    return QStringLiteral("$CQ%1:AB1:ACC:{\"config\":{%2}}").arg(callsign, members);
}

/// Everything on and down, engines running, flaps at a quarter.
inline QString fullConfiguration(const QString &callsign)
{
    return configuration(
        callsign,
        QStringLiteral("\"is_full_data\":true,\"lights\":{\"strobe_on\":true,\"landing_on\":true,\"taxi_on\":true,"
                       "\"beacon_on\":true,\"nav_on\":true},\"engines\":{\"1\":{\"on\":true,\"is_reversing\":false},"
                       "\"2\":{\"on\":true,\"is_reversing\":false}},\"gear_down\":true,\"flaps_pct\":25,"
                       "\"spoilers_out\":false,\"on_ground\":true"));
}

inline QString deletion(const QString &callsign)
{
    return QStringLiteral("#DP%1:2001").arg(callsign);
}

/// What the client asks when it wants an aircraft's type.
inline QStringList typeQuestions(const QString &callsign, bool token = false)
{
    QStringList lines{QStringLiteral("#SBAB1:%1:PIR").arg(callsign),
                      QStringLiteral("$CQAB1:SERVER:FP:%1").arg(callsign)};
    if (token)
        lines << QStringLiteral("#TMAB1:SERVER:FP:%1:GET").arg(callsign);
    return lines;
}

inline QString ownCapabilities(const QString &to)
{
    return QStringLiteral("$CRAB1:%1:CAPS:VERSION=1:ATCINFO=1:MODELDESC=1:ACCONFIG=1:VISUPDATE=1").arg(to);
}

inline QString configurationQuestion(const QString &callsign)
{
    return QStringLiteral("$CQAB1:%1:ACC:{\"request\":\"full\"}").arg(callsign);
}

inline constexpr double metresUp = 10000 / 3.28084;

inline practice::PluginMessage add(const QString &callsign, const QString &airline = QStringLiteral("CCA"),
                                   const QString &type = QStringLiteral("B738"))
{
    return {QStringLiteral("ADD"), {callsign, airline, type, 40.0, 116.5, metresUp, 90.0, -5.0, 10.0}};
}

inline practice::PluginMessage pos(const QString &callsign, double knots)
{
    return {QStringLiteral("POS"), {callsign, 40.0, 116.5, metresUp, 0.0, 90.0, -5.0, 10.0, knots}};
}

inline practice::PluginMessage fstpos(const QString &callsign, double x, double y, double z, double knots)
{
    return {QStringLiteral("FSTPOS"),
            {callsign, 40.0, 116.5, metresUp, 5000 / 3.28084, 90.0, -5.0, 10.0, x, y, z, 0.1, 0.2, 0.3, 12.0, knots}};
}

inline practice::PluginMessage hb(const QString &callsign)
{
    return {QStringLiteral("HB"), {callsign}};
}

inline practice::PluginMessage del(const QString &callsign, const QString &reason)
{
    return {QStringLiteral("DEL"), {callsign, reason}};
}

/// The eleven values after the callsign.
inline practice::PluginMessage acconf(const QString &callsign, const QVariantList &values)
{
    return {QStringLiteral("ACCONF"), QVariantList{callsign} + values};
}

/// fullConfiguration() as the plugin is told it.
inline practice::PluginMessage acconfFull(const QString &callsign)
{
    return acconf(callsign, {true, true, false, true, 0.25F, true, true, true, true, true, true});
}

/// The list of stations; each of them is a list of callsign, name, frequency as text and frequency in kHz.
inline practice::PluginMessage stations(const QVariantList &list)
{
    return {QStringLiteral("ATC"), {QVariant(list)}};
}

inline practice::PluginMessage tuned(int radio, const QString &callsign)
{
    return {QStringLiteral("STATION_CALLSIGN"), {radio, callsign}};
}

inline practice::PluginMessage note(const QString &text, int colour)
{
    return {QStringLiteral("NOTIF"), {text, colour}};
}

/// A new simulator's radios come in one piece or in several, and each time the stations are told.
inline QStringList withoutStations(QStringList messages)
{
    messages.removeIf([](const QString &message) { return message.startsWith(u"STATION_CALLSIGN"_qs); });
    return messages;
}

// How a plugin answers an addition or a farewell.
inline constexpr practice::PluginAnswering atOnce{};
inline constexpr practice::PluginAnswering silent{.silent = true, .delayMs = 0};
/// Later than it can take until a new simulator is there: its clock runs while the client waits for it.
inline constexpr practice::PluginAnswering late{.silent = false, .delayMs = 3'600'000};

inline practice::PluginMessage bare(const QString &name)
{
    return {name, {}};
}

} // namespace tarvo::test
