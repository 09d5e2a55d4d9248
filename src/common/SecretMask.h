#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace tarvo::common {

/// Writes "******" in place of secrets: as they are, escaped for JSON, percent-encoded or sent by a form, or two of
/// these around each other; or within Base64 or hexadecimal digits, of which the whole run goes, with such escapes
/// within and around them.
class SecretMask
{
public:
    static constexpr qsizetype longestText = 40 * 1024; ///< characters: a log of the client's keeps a tenth

    /// Text in UTF-8, or bytes of which a text may have the Base64. Empty ones don't count.
    explicit SecretMask(const QByteArrayList &secrets);

    /// Of a longer text only the beginning comes back, with no part of a secret at its end.
    QString applied(const QString &text) const;

private:
    QByteArrayList m_secrets;
    qsizetype m_longest = 0;
    QByteArrayList m_inRuns; ///< those that are looked for in Base64
    qsizetype m_shortestInRuns = 0;
};

/// `text` behind a mask for this once.
QString withoutSecrets(const QString &text, const QStringList &secrets);

} // namespace tarvo::common
