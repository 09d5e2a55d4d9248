#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QtGlobal>

namespace tarvo::simulator::xplane {

// X-Plane's UDP packets. All numbers are little-endian.

/// Asks for `dataref` `rateHz` times a second, to be reported under `id`; 413 bytes.
/// Wire: "RREF" 0 rate(i32) id(i32) name, zero-padded
QByteArray subscribePacket(qint32 rateHz, qint32 id, QByteArrayView dataref);

/// Writes `value` to `dataref`; 509 bytes.
/// Wire: "DREF" 0 value(f32) name, zero-padded
QByteArray writePacket(QByteArrayView dataref, float value);

/// Runs `command`; six bytes longer than its name.
/// Wire: "CMND" 0 name 0
QByteArray commandPacket(QByteArrayView command);

/// One value that X-Plane reports.
struct RrefRecord
{
    quint32 id;
    float value;
};

/// Reads X-Plane's replies in place. Any bytes are safe.
/// Wire: "RREF", one further byte, then records of id(u32) value(f32); what is left over at the end is ignored
class RrefReply
{
public:
    explicit RrefReply(QByteArrayView datagram) : m_datagram(datagram) {}

    /// True when the datagram begins as a reply does.
    bool isValid() const;
    /// Whole records in it; below 13 bytes none.
    qsizetype count() const;
    /// `index`: 0 to count() - 1.
    RrefRecord record(qsizetype index) const;

private:
    QByteArrayView m_datagram;
};

} // namespace tarvo::simulator::xplane
