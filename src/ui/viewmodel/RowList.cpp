#include "ui/viewmodel/RowList.h"

#include <algorithm>
#include <utility>

namespace tarvo::ui {

RowList::RowList(QList<QByteArray> keys, QObject *parent) : QAbstractListModel(parent), m_keys(std::move(keys)) {}

int RowList::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant RowList::data(const QModelIndex &index, int role) const
{
    const int key = role - Qt::UserRole;
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || key < 0 || key >= m_keys.size())
        return {};
    return m_rows.at(index.row()).value(QLatin1String(m_keys.at(key)), QString());
}

QHash<int, QByteArray> RowList::roleNames() const
{
    QHash<int, QByteArray> names;
    for (int key = 0; key < m_keys.size(); ++key)
        names.insert(Qt::UserRole + key, m_keys.at(key));
    return names;
}

QVariantList RowList::toList() const
{
    return {m_rows.cbegin(), m_rows.cend()};
}

bool RowList::setRows(const QVariantList &rows)
{
    const qsizetype before = m_rows.size();
    const qsizetype common = std::min(before, rows.size());
    bool changed = false;
    for (qsizetype i = 0; i < common; ++i) {
        QVariantMap row = rows.at(i).toMap();
        if (row == m_rows.at(i))
            continue;
        m_rows[i] = std::move(row);
        const QModelIndex cell = index(static_cast<int>(i));
        emit dataChanged(cell, cell);
        changed = true;
    }
    if (rows.size() > before) {
        beginInsertRows({}, static_cast<int>(before), static_cast<int>(rows.size()) - 1);
        for (qsizetype i = before; i < rows.size(); ++i)
            m_rows.append(rows.at(i).toMap());
        endInsertRows();
    }
    removeFrom(rows.size());
    if (before != m_rows.size())
        emit countChanged();
    return changed || before != m_rows.size();
}

void RowList::prepend(const QVariantMap &row, qsizetype maximum)
{
    const qsizetype before = m_rows.size();
    removeFrom(std::max<qsizetype>(0, maximum - 1));
    beginInsertRows({}, 0, 0);
    m_rows.prepend(row);
    endInsertRows();
    if (before != m_rows.size())
        emit countChanged();
}

void RowList::removeFrom(qsizetype first)
{
    if (first >= m_rows.size())
        return;
    beginRemoveRows({}, static_cast<int>(first), count() - 1);
    m_rows.resize(first);
    endRemoveRows();
}

} // namespace tarvo::ui
