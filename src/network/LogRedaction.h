#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace tarvo::network {

/// A reply's body for the log: compact JSON on one line in which every "token", "flush_token" and "password", however
/// deep, is "******", and so is each of the secrets wherever a text holds it. Cut to 4096 characters. A body that is no
/// JSON may hold a secret in any form, so that only its size is told.
QString redactedBody(const QByteArray &body, const QStringList &secrets);

/// `text` with each of the secrets that occurs in it written as "******", and line breaks made blanks, so that a
/// service can neither echo a secret into the log nor forge a line of it. Cut to 4096 characters.
QString redactedText(const QString &text, const QStringList &secrets);

} // namespace tarvo::network
