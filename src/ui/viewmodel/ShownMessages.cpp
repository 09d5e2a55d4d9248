#include "ui/viewmodel/ShownMessages.h"

#include <QDateTime>
#include <QLocale>

namespace tarvo::ui {

namespace {

/// "11月22日 星期日", local.
QString dayText(qint64 wallMs)
{
    return QLocale(QLocale::Chinese).toString(QDateTime::fromMSecsSinceEpoch(wallMs), QStringLiteral("M月d日 dddd"));
}

constexpr Role<ShownMessage> messageRoles[] = {
    {"expanded", member<&ShownMessage::expanded>},
    {"type", [](const ShownMessage &row) -> QVariant { return row.message.type(); }},
    {"direction", [](const ShownMessage &row) -> QVariant { return row.message.direction(); }},
    {"directionLabel", [](const ShownMessage &row) -> QVariant { return row.message.directionLabel(); }},
    {"from", [](const ShownMessage &row) -> QVariant { return row.message.from; }},
    {"to", [](const ShownMessage &row) -> QVariant { return row.message.to; }},
    {"time", [](const ShownMessage &row) -> QVariant { return localTime(row.wallMs); }},
    {"day", [](const ShownMessage &row) -> QVariant { return dayText(row.wallMs); }},
    {"message", [](const ShownMessage &row) -> QVariant { return row.message.body; }},
    {"meta", [](const ShownMessage &row) -> QVariant { return row.message.meta; }},
    {"frequencies", [](const ShownMessage &row) -> QVariant { return row.message.frequencies; }},
    {"isDirect", [](const ShownMessage &row) -> QVariant { return row.message.isDirect; }},
};
constexpr int expandedRole = Qt::UserRole;

} // namespace

ShownMessages::ShownMessages(QObject *parent) : RowsModel(messageRoles, parent) {}

void ShownMessages::forget(qint64 id)
{
    if (!rows().isEmpty() && rows().constFirst().id == id)
        remove(0);
}

bool ShownMessages::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || role != expandedRole)
        return false;
    ShownMessage row = rows().at(index.row());
    row.expanded = value.toBool();
    replace(index.row(), row);
    return true;
}

} // namespace tarvo::ui
