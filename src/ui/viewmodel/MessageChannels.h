#pragma once

#include <QString>
#include <QStringList>

/// The keys of the channels through which the list of messages is shown. A private session's key is its callsign.
namespace tarvo::ui::channels {

QString server();
QString radio();
/// The overview of the private sessions.
QString privateOverview();
QString broadcast();
QString wallop();
QString selcal();
/// A filter, not a channel: everything.
QString all();

/// The channels that always stand, in the order of the page; private sessions go behind privateOverview().
QStringList fixed();
/// "私聊 %1" for a callsign.
QString label(const QString &key);
/// True when there can be a session with the callsign. A channel's or filter's own word can't be one: its texts would
/// mix with that channel's. Nor can an address for many, such as "@18500", "*" or "*S": an answer would go out on the
/// radio or to everybody. `callsign`: upper-case.
bool canBeSession(const QString &callsign);

} // namespace tarvo::ui::channels
