#include "ui/viewmodel/RadioEntry.h"

#include "ui/viewmodel/Frequency.h"

#include <QCoreApplication>
#include <QRegularExpression>

namespace tarvo::ui {

namespace {

constexpr quint32 lowestKilohertz = 118'000;
constexpr quint32 highestKilohertz = 136'990;
constexpr quint32 stepKilohertz = 5;
constexpr qsizetype codeDigits = 4;

QString tr(const char *text)
{
    return QCoreApplication::translate("RadioEntry", text);
}

QVariantMap accepted(const QString &value)
{
    return {{QStringLiteral("value"), value}};
}

QVariantMap refused(const QString &hint, bool unfinished = false)
{
    return {{QStringLiteral("hint"), hint}, {QStringLiteral("unfinished"), unfinished}};
}

/// kHz of three digits, a point and one to three more; nothing for another form.
std::optional<quint32> inMegahertz(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^([0-9]{3})\\.([0-9]{1,3})\\z"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    return match.captured(1).toUInt() * 1000 + match.captured(2).leftJustified(3, u'0').toUInt();
}

/// True for what may yet become a frequency: "1", "13", "121."
bool beginsAFrequency(const QString &text)
{
    for (quint32 megahertz = lowestKilohertz / 1000; megahertz <= highestKilohertz / 1000; ++megahertz) {
        if (QStringLiteral("%1.").arg(megahertz).startsWith(text))
            return true;
    }
    return false;
}

bool isOctal(const QString &text)
{
    static const QRegularExpression octal(QStringLiteral("^[0-7]*\\z"));
    return octal.match(text).hasMatch();
}

} // namespace

std::optional<quint32> comFrequencyKhz(const QString &megahertz)
{
    const std::optional<quint32> typed = inMegahertz(megahertz.trimmed());
    if (!typed || *typed < lowestKilohertz || *typed > highestKilohertz || *typed % stepKilohertz != 0)
        return std::nullopt;
    return typed;
}

std::optional<int> transponderCode(const QString &digits)
{
    const QString code = digits.trimmed();
    if (code.isEmpty() || code.size() > codeDigits || !isOctal(code))
        return std::nullopt;
    return code.toInt();
}

QVariantMap frequencyVerdict(const QString &typed, const QString &example)
{
    if (const std::optional<quint32> kilohertz = comFrequencyKhz(typed))
        return accepted(megahertz(*kilohertz));
    const std::optional<quint32> kilohertz = inMegahertz(typed);
    if (!kilohertz)
        return refused(tr("格式如 %1").arg(example), beginsAFrequency(typed));
    if (*kilohertz < lowestKilohertz || *kilohertz > highestKilohertz)
        return refused(tr("范围 118.000 至 136.990"));
    return refused(tr("末位只能是 0 或 5"));
}

QVariantMap transponderVerdict(const QString &typed)
{
    if (!isOctal(typed))
        return refused(tr("只能用数字 0 至 7"));
    return typed.size() > codeDigits ? refused(tr("最多四位数字")) : accepted(typed);
}

} // namespace tarvo::ui
