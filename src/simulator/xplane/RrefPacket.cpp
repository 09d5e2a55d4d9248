#include "simulator/xplane/RrefPacket.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace tarvo::simulator::xplane {

namespace {

constexpr qsizetype subscribeSize = 413;
constexpr qsizetype writeSize = 509;
constexpr qsizetype headerSize = 5;
constexpr qsizetype recordSize = 8;

/// A packet of zeros under its four-letter tag.
QByteArray taggedPacket(const char *tag, qsizetype size)
{
    QByteArray packet(size, '\0');
    std::memcpy(packet.data(), tag, 4);
    return packet;
}

/// Keeps one zero behind the name, whatever its length.
void putName(QByteArray &packet, qsizetype offset, QByteArrayView name)
{
    const qsizetype length = std::min(name.size(), packet.size() - offset - 1);
    std::copy_n(name.data(), length, packet.data() + offset);
}

} // namespace

QByteArray subscribePacket(qint32 rateHz, qint32 id, QByteArrayView dataref)
{
    QByteArray packet = taggedPacket("RREF", subscribeSize);
    qToLittleEndian(rateHz, packet.data() + 5);
    qToLittleEndian(id, packet.data() + 9);
    putName(packet, 13, dataref);
    return packet;
}

QByteArray writePacket(QByteArrayView dataref, float value)
{
    QByteArray packet = taggedPacket("DREF", writeSize);
    qToLittleEndian(value, packet.data() + 5);
    putName(packet, 9, dataref);
    return packet;
}

QByteArray commandPacket(QByteArrayView command)
{
    QByteArray packet = taggedPacket("CMND", command.size() + 6);
    putName(packet, 5, command);
    return packet;
}

bool RrefReply::isValid() const
{
    return m_datagram.startsWith(QByteArrayView("RREF"));
}

qsizetype RrefReply::count() const
{
    // Signed on purpose: a reply of four bytes gives 0 and not a huge number.
    return (m_datagram.size() - headerSize) / recordSize;
}

RrefRecord RrefReply::record(qsizetype index) const
{
    const char *at = m_datagram.data() + headerSize + index * recordSize;
    return {.id = qFromLittleEndian<quint32>(at), .value = qFromLittleEndian<float>(at + 4)};
}

} // namespace tarvo::simulator::xplane
