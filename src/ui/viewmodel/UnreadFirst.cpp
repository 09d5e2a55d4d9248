#include "ui/viewmodel/UnreadFirst.h"

namespace tarvo::ui {

UnreadFirst::UnreadFirst(QAbstractItemModel &rows, QObject *parent)
    : QSortFilterProxyModel(parent), m_unreadRole(rows.roleNames().key("unread", -1))
{
    setSourceModel(&rows);
    sort(0);
}

bool UnreadFirst::lessThan(const QModelIndex &left, const QModelIndex &right) const
{
    const bool leftUnread = left.data(m_unreadRole).toInt() > 0;
    const bool rightUnread = right.data(m_unreadRole).toInt() > 0;
    return leftUnread == rightUnread ? left.row() < right.row() : leftUnread;
}

} // namespace tarvo::ui
