#pragma once

#include <QString>
#include <QStringList>

/// The keys of the channels through which the list of messages is shown. A private session's key is its callsign.
namespace tarvo::ui::viewmodel::channels {

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
/// True for a channel's or a filter's own word. Such a callsign can't have a session: its private texts would mix with
/// another channel, and an answer might go out on the radio.
bool isReserved(const QString &key);

} // namespace tarvo::ui::viewmodel::channels
