#pragma once

#include "network/SwiftAircraftIcaoRow.h"

#include <QByteArray>
#include <QList>
#include <QString>

class QIODevice;

namespace tarvo::network {

/// What the legacy JSON file holds.
struct LegacyIcaoJson
{
    QString error; ///< why it can't be read, as a line for the log; empty on success
    QString label; ///< "latest"
    QList<SwiftAircraftIcaoRow> rows;
};

/// Reads the legacy JSON: the rows are the objects of the array "data". Texts are taken as they are; they are cleaned
/// when the database is loaded. Numbers and flags may be written as text ("Y" and "true" are true).
LegacyIcaoJson parseLegacyIcaoJson(const QByteArray &json);

/// Reads lines of five tab-separated columns: manufacturer, model, designator, description, wake category. Shorter
/// lines and designators outside 2 to 4 characters are dropped; further columns are ignored. Ids and ranks count the
/// rows that are kept, from 1.
QList<SwiftAircraftIcaoRow> parseDoc8643(QIODevice &device);

} // namespace tarvo::network
