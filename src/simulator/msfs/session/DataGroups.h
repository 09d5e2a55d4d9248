#pragma once

#include "simulator/msfs/simvar/SimVarTable.h"

#include <QByteArrayView>
#include <QList>
#include <QVariantMap>

#include <array>
#include <optional>

namespace tarvo::simulator::msfs {

class SimConnectLink;

/// The four groups of the own aircraft's variables: their definitions, their subscriptions, their samples.
class DataGroups
{
public:
    explicit DataGroups(SimConnectLink &link);

    /// Takes the table's rows for this simulator.
    void setProfile(MsfsRuntimeProfile profile);
    /// What is read; empty until a simulator is known.
    const QList<SimVarBinding> &bindings() const { return m_bindings; }

    /// Defines all groups. False when nothing new is defined: the session is closed, they are defined already, or the
    /// simulator refuses a variable, which the link tells and which leaves none of them.
    bool define(MsfsRuntimeProfile profile);
    bool areDefined() const { return m_areDefined; }
    /// Ends the subscriptions and clears the definitions.
    void undefine();

    /// Every frame in which something in the group has changed.
    void subscribe(UpdateGroup group);
    void unsubscribe(UpdateGroup group);
    /// Once more, of a group that is subscribed.
    void requestOnce(UpdateGroup group);

    /// The sample that a request's data are; nothing when it is none of the groups'.
    std::optional<QVariantMap> sample(quint32 request, QByteArrayView data) const;

    /// As in the beginning; nothing is told to the simulator.
    void reset();

private:
    void clearDefinitions() const;
    bool isSubscribed(UpdateGroup group) const;
    qint32 request(UpdateGroup group, quint32 period, quint32 flags) const;

    SimConnectLink &m_link;
    bool m_areDefined = false;
    QList<SimVarBinding> m_bindings;
    std::array<QList<SimVarBinding>, std::size(updateGroups)> m_groups; ///< the same, by group
    std::array<bool, std::size(updateGroups)> m_subscribed{};
};

} // namespace tarvo::simulator::msfs
