#pragma once

#include <QList>
#include <QObject>

#include <utility>

namespace tarvo::manager {

/// Connections that are undone together, at the latest when the list is destroyed. As the last member of an object it
/// keeps signals from reaching that object while it is destroyed.
class ConnectionList
{
public:
    ConnectionList() = default;
    ~ConnectionList() { clear(); }
    ConnectionList(const ConnectionList &) = delete;
    ConnectionList &operator=(const ConnectionList &) = delete;

    void add(const QList<QMetaObject::Connection> &connections) { m_connections += connections; }

    void clear()
    {
        for (const QMetaObject::Connection &connection : std::as_const(m_connections))
            QObject::disconnect(connection);
        m_connections.clear();
    }

private:
    QList<QMetaObject::Connection> m_connections;
};

} // namespace tarvo::manager
