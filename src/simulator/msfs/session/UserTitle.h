#pragma once

#include <QByteArrayView>
#include <QString>

namespace tarvo::simulator::msfs {

class SimConnectLink;

/// The title of the model that the pilot flies, asked for once.
class UserTitle
{
public:
    static constexpr quint32 requestId = 50001;

    explicit UserTitle(SimConnectLink &link);

    /// Asks, unless it did. A failure is logged.
    void request();
    /// Clears the definition; the title can be asked for anew.
    void undefine();
    /// As in the beginning; nothing is told to the simulator.
    void reset();

    /// The title in a reply; empty without one.
    static QString read(QByteArrayView data);

private:
    SimConnectLink &m_link;
    bool m_isDefined = false;
    bool m_isRequested = false;
};

} // namespace tarvo::simulator::msfs
