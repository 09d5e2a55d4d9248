#pragma once

#include <QAbstractListModel>
#include <QByteArray>
#include <QHash>
#include <QList>
#include <QVariant>

#include <algorithm>
#include <span>
#include <utility>

namespace tarvo::ui {

/// What QML reads of a row under one name.
template <typename Row>
struct Role
{
    const char *name;
    QVariant (*value)(const Row &row);
};

/// The value of a role that is one of the row's members.
template <auto Member, typename Row>
QVariant member(const Row &row)
{
    return row.*Member;
}

/// A list of plain rows for a QML view. Each change is announced as what it is, so that rows that stay keep their
/// delegates and their places. The roles are numbered from Qt::UserRole in their table's order.
template <typename Row>
class RowsModel : public QAbstractListModel
{
public:
    /// `roles` must outlive the model.
    explicit RowsModel(std::span<const Role<Row>> roles, QObject *parent = nullptr)
        : QAbstractListModel(parent), m_roles(roles)
    {
    }

    const QList<Row> &rows() const { return m_rows; }

    int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
    }

    QVariant data(const QModelIndex &index, int role) const override
    {
        const auto which = static_cast<std::size_t>(role - Qt::UserRole);
        if (!index.isValid() || which >= m_roles.size())
            return {};
        return m_roles[which].value(m_rows.at(index.row()));
    }

    QHash<int, QByteArray> roleNames() const override
    {
        QHash<int, QByteArray> names;
        for (std::size_t i = 0; i < m_roles.size(); ++i)
            names.insert(Qt::UserRole + static_cast<int>(i), m_roles[i].name);
        return names;
    }

    /// The rows as maps from the roles' names to their values.
    QVariantList toList() const
    {
        QVariantList list;
        for (const Row &row : m_rows) {
            QVariantMap map;
            for (const Role<Row> &role : m_roles)
                map.insert(QString::fromLatin1(role.name), role.value(row));
            list << map;
        }
        return list;
    }

    void insert(qsizetype at, Row row)
    {
        beginInsertRows({}, static_cast<int>(at), static_cast<int>(at));
        m_rows.insert(at, std::move(row));
        endInsertRows();
    }

    /// Adds a row in front; the last ones beyond `maximum`, which is at least 1, go.
    void prepend(Row row, qsizetype maximum)
    {
        removeFrom(maximum - 1);
        insert(0, std::move(row));
    }

    void remove(qsizetype at)
    {
        beginRemoveRows({}, static_cast<int>(at), static_cast<int>(at));
        m_rows.removeAt(at);
        endRemoveRows();
    }

    /// False, without a signal, when the row is the same already.
    bool replace(qsizetype at, Row row)
    {
        if (m_rows.at(at) == row)
            return false;
        m_rows[at] = std::move(row);
        emit dataChanged(index(static_cast<int>(at)), index(static_cast<int>(at)));
        return true;
    }

    /// Shows these rows instead. They are compared row by row, and only differences are announced. False when there are
    /// none.
    bool setRows(const QList<Row> &rows)
    {
        const qsizetype before = m_rows.size();
        bool changed = before != rows.size();
        for (qsizetype i = 0; i < std::min(before, rows.size()); ++i)
            changed |= replace(i, rows.at(i));
        if (rows.size() > before) {
            beginInsertRows({}, static_cast<int>(before), static_cast<int>(rows.size()) - 1);
            m_rows.append(rows.sliced(before));
            endInsertRows();
        }
        removeFrom(rows.size());
        return changed;
    }

    /// Every row is another one now.
    void reset(QList<Row> rows)
    {
        beginResetModel();
        m_rows = std::move(rows);
        endResetModel();
    }

private:
    void removeFrom(qsizetype first)
    {
        if (first >= m_rows.size())
            return;
        beginRemoveRows({}, static_cast<int>(first), static_cast<int>(m_rows.size()) - 1);
        m_rows.resize(first);
        endRemoveRows();
    }

    std::span<const Role<Row>> m_roles;
    QList<Row> m_rows;
};

} // namespace tarvo::ui
