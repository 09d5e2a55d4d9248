#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace tarvo::network {

/// A reply's body for the log: compact JSON on one line in which every "token", "flush_token" and "password", however
/// deep, is "******", and so is each of the secrets wherever a text holds it, in any form of withoutSecrets(). Cut to
/// 4096 characters. Of a body that is no JSON, or too long to look through, only the size is told.
QString redactedBody(const QByteArray &body, const QStringList &secrets);

/// `text` with each of the secrets that occurs in it, in any form of withoutSecrets(), written as "******", and line
/// breaks made blanks, so that a service can neither echo a secret into the log nor forge a line of it. Cut to 4096
/// characters.
QString redactedText(const QString &text, const QStringList &secrets);

} // namespace tarvo::network
