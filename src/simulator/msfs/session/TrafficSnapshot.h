#pragma once

#include <QObject>
#include <QTimer>
#include <QVariantList>

namespace tarvo::simulator::msfs {

class SimConnectLink;
struct TypedObjectMessage;

/// Every aircraft around the own one, once a second while it is enabled.
class TrafficSnapshot : public QObject
{
    Q_OBJECT

public:
    static constexpr quint32 largestRadius = 200'000; ///< metres

    explicit TrafficSnapshot(SimConnectLink &link, QObject *parent = nullptr);

    /// Whether it is wanted, open or not.
    bool isEnabled() const { return m_isEnabled; }
    /// Its definition is made or its timer runs.
    bool isUsed() const;
    /// Wants it. start() begins.
    void enable() { m_isEnabled = true; }
    /// Stops and raises an empty snapshot.
    void disable();
    /// Metres; a larger one than the largest is that.
    void setRadius(quint32 radius);

    /// Makes the definition, asks at once and then each second. The groups are defined.
    void start();
    /// One object of a reply.
    void receive(const TypedObjectMessage &message);

    /// Clears the definition. The timer goes on.
    void undefine();
    /// As in the beginning, but for wish and radius; nothing is told to the simulator.
    void reset();

signals:
    void received(const QVariantList &contacts);

private:
    bool define();
    void request();

    SimConnectLink &m_link;
    QTimer m_timer;
    bool m_isEnabled = false;
    bool m_isDefined = false;
    quint32 m_radius = 30'000;
    QVariantList m_rows;
};

} // namespace tarvo::simulator::msfs
