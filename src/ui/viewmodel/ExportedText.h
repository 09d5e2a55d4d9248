#pragma once

#include <QList>
#include <QString>

namespace tarvo::ui {

struct StoredMessage;

/// The messages as a text for people: a line for each, with local date and time, direction, who to whom, and the text,
/// whose further lines are indented.
QString exportedText(const QList<StoredMessage> &messages);

/// A file name that every system takes: "TARVO 无线电 2026-11-22.txt". `title`: the channel's, which may be a callsign
/// from the network. `wallMs`: ms since the epoch.
QString exportFileName(const QString &title, qint64 wallMs);

} // namespace tarvo::ui
