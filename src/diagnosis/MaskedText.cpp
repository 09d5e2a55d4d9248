#include "diagnosis/MaskedText.h"

#include "ConfigKey.h"
#include "IniFormat.h"
#include "LastWords.h"
#include "common/SecretMask.h"

#include <QIODevice>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <variant>

namespace tarvo::diagnosis {

namespace {

bool isSecret(const config::AnyKey &anyKey)
{
    const auto *key = std::get_if<StringKey>(&anyKey);
    return key && key->isEncrypted;
}

/// A key that is misspelt or damaged may be that of a password.
bool mayBeShown(const QString &name)
{
    return std::any_of(config::storedKeys.begin(), config::storedKeys.end(), [&](const config::AnyKey &anyKey) {
        return !isSecret(anyKey) &&
               std::visit([&](const auto &key) { return name == QLatin1StringView(key.key); }, anyKey);
    });
}

/// What tells a secret by its looks: those of earlier sessions stand in no settings. The first group stays.
const std::array<QRegularExpression, 4> &secretLooks()
{
    static const std::array<QRegularExpression, 4> looks{
        // JSON Web Tokens; one may be cut.
        QRegularExpression(QStringLiteral("()eyJ[\\w-]{5,}(?:\\.[\\w-]*){0,2}")),
        QRegularExpression(QStringLiteral("(Bearer(?:\\s|\\+|%20)+)[^\\s\"',;]+"),
                           QRegularExpression::CaseInsensitiveOption),
        QRegularExpression(QStringLiteral(R"(((?:token|password)\\*"\s*:\s*\\*")(?:[^"\\]|\\[^"])*)"),
                           QRegularExpression::CaseInsensitiveOption),
        // The password of a login line: #AP callsign:SERVER:CID:password, #AA with a name before the CID.
        QRegularExpression(QStringLiteral("(#AP(?:[^:\\n]*:){3}|#AA(?:[^:\\n]*:){4})[^:\\n]+")),
    };
    return looks;
}

QVariant masked(const QString &name, const QVariant &value, const common::SecretMask &mask)
{
    const QStringList texts = value.toStringList(); // of a single value a list of one
    if (!mayBeShown(name))
        return texts.join(QString()).isEmpty() ? QString() : QStringLiteral("******");
    QStringList shown;
    for (const QString &text : texts)
        shown << maskedText(text, mask);
    return shown.size() == 1 ? QVariant(shown.first()) : QVariant(shown);
}

} // namespace

QString maskedText(const QString &text, const common::SecretMask &mask)
{
    const bool isCut = text.endsWith(lastwords::cutMark); // in a crash file
    QString shown = isCut ? mask.appliedToCut(text.chopped(lastwords::cutMark.size())) : mask.applied(text);
    for (const QRegularExpression &look : secretLooks())
        shown.replace(look, QStringLiteral("\\1******"));
    if (text.size() > common::SecretMask::longestText)
        shown += QStringLiteral(" [the rest of these %1 characters is left out]").arg(text.size());
    else if (isCut)
        shown += lastwords::cutMark;
    return shown;
}

QByteArray maskedSettings(const QSettings::SettingsMap &values, const common::SecretMask &mask)
{
    QSettings::SettingsMap shown;
    for (auto it = values.begin(); it != values.end(); ++it)
        shown.insert(maskedText(it.key(), mask), masked(it.key(), it.value(), mask));
    return ini::print(shown);
}

QByteArray maskedLog(QIODevice &log, const common::SecretMask &mask, qint64 most)
{
    QByteArray result;
    const qint64 end = log.size(); // the client may be writing it
    if (const qint64 before = end - most; before > 0) {
        log.seek(before);
        log.readLine(); // a part of one may hold a part of a secret, which nobody would find
        result = "[" + QByteArray::number(log.pos()) + " bytes before this are left out]\n";
    }
    while (log.pos() < end && !log.atEnd()) {
        QString line = QString::fromUtf8(log.readLine());
        if (line.endsWith(QLatin1Char('\n')))
            line.chop(1);
        else
            line += lastwords::cutMark; // its end is still to be written, or was lost in a crash
        result += maskedText(line, mask).toUtf8() + '\n';
    }
    return result;
}

} // namespace tarvo::diagnosis
