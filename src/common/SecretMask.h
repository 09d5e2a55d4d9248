#pragma once

#include <QString>
#include <QStringList>

namespace tarvo::common {

/// `text` with each of the non-empty secrets written as "******": as it is, JSON-escaped, percent-encoded, or within
/// Base64, of which the whole run goes. Of a very long text only the beginning comes back.
QString withoutSecrets(const QString &text, const QStringList &secrets);

} // namespace tarvo::common
