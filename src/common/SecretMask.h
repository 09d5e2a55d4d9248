#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <utility>

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

    /// Of a longer text only the beginning comes back, as of one that was cut.
    QString applied(const QString &text) const;
    /// The same for a text that went on, with no part of a secret at its end: as much of it goes as a secret could be
    /// long, in its longest form.
    QString appliedToCut(const QString &text) const;

private:
    /// First byte, and the one behind the last.
    QList<std::pair<qsizetype, qsizetype>> rangesIn(const QByteArray &text) const;

    QByteArrayList m_secrets;
    qsizetype m_longest = 0;
    QByteArrayList m_inRuns; ///< those that are looked for in Base64
    qsizetype m_shortestInRuns = 0;
};

/// `text` behind a mask for this once.
QString withoutSecrets(const QString &text, const QStringList &secrets);

} // namespace tarvo::common
