#include "ui/viewmodel/ExportedText.h"

#include "ui/viewmodel/MessageStore.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace tarvo::ui {

namespace {

QString localText(qint64 wallMs, const QString &format)
{
    return QDateTime::fromMSecsSinceEpoch(wallMs).toString(format);
}

/// `text` with `instead` for each break that some editor shows as a new line: others' texts must forge no line.
QString withBreaks(QString text, const QString &instead)
{
    static const QRegularExpression anyBreak(QStringLiteral("\\R"));
    return text.replace(anyBreak, instead);
}

QString people(const Message &message)
{
    const QString to = message.to.isEmpty() ? message.frequencies : message.to;
    const QString both = to.isEmpty() ? message.from : message.from + QStringLiteral(" -> ") + to;
    return withBreaks(both, QStringLiteral(" "));
}

QString line(const StoredMessage &stored)
{
    const Message &message = stored.message;
    const QString text = withBreaks(message.body.isEmpty() ? message.meta : message.body, QStringLiteral("\n    "));
    const QString when = localText(stored.wallMs, QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    return QStringList{when, message.directionLabel(), people(message), text}.join(QStringLiteral("  ")) + u'\n';
}

} // namespace

QString exportedText(const QList<StoredMessage> &messages)
{
    QString text;
    for (const StoredMessage &stored : messages)
        text += line(stored);
    return text;
}

QString exportFileName(const QString &title, qint64 wallMs)
{
    QString name = title;
    std::ranges::replace_if(
        name, [](QChar letter) { return !letter.isLetterOrNumber() && letter != u'_' && letter != u' '; }, u'-');
    return QStringLiteral("TARVO %1 %2.txt").arg(name, localText(wallMs, QStringLiteral("yyyy-MM-dd")));
}

} // namespace tarvo::ui
