#pragma once

#include <QAbstractListModel>
#include <QByteArray>
#include <QList>
#include <QVariantList>
#include <QVariantMap>

namespace tarvo::ui {

/// The rows of a page's list, each a map with the same keys; a delegate has the keys as its properties, and an empty
/// text for a key that a row lacks. What stays in the list keeps its delegate.
class RowList : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    explicit RowList(QList<QByteArray> keys, QObject *parent = nullptr);

    int count() const { return static_cast<int>(m_rows.size()); }
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// The rows as a list of maps.
    QVariantList toList() const;

    /// Shows these rows instead, row by row: only what differs is told. Returns false when nothing does.
    bool setRows(const QVariantList &rows);
    /// Adds a row in front; the last ones beyond `maximum` go.
    void prepend(const QVariantMap &row, qsizetype maximum);

signals:
    void countChanged();

private:
    void removeFrom(qsizetype first);

    QList<QByteArray> m_keys; ///< the roles, from Qt::UserRole on
    QList<QVariantMap> m_rows;
};

} // namespace tarvo::ui
