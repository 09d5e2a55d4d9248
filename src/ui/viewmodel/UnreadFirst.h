#pragma once

#include <QSortFilterProxyModel>

namespace tarvo::ui {

/// A list with its unread rows first, each part in the list's own order. Its rows have a role "unread".
class UnreadFirst : public QSortFilterProxyModel
{
public:
    explicit UnreadFirst(QAbstractItemModel &rows, QObject *parent = nullptr);

protected:
    bool lessThan(const QModelIndex &left, const QModelIndex &right) const override;

private:
    int m_unreadRole;
};

} // namespace tarvo::ui
