#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

namespace tarvo::simulator::msfs {

/// The bytes of a text file with its mark taken away and UTF-16 made UTF-8, so that line ends and other ASCII signs can
/// be looked for in bytes. UTF-16 without a mark shows by a zero beside the first character.
QByteArray withAsciiSigns(const QByteArray &bytes);

/// A piece of such bytes as text: UTF-8 where it can be that, else Latin-1.
QString textOf(QByteArrayView bytes);

/// Without one pair of enclosing double quotes, and without white space on either side of them.
QByteArrayView withoutQuotes(QByteArrayView bytes);

/// A path that a file names, with Windows' separators turned on every system, and cleaned. Empty stays empty.
QString cleanForeignPath(QString path);

} // namespace tarvo::simulator::msfs
