#include "simulator/xplane/Outbox.h"

#include <utility>

namespace tarvo::simulator::xplane {

using Kind = OutgoingMessage::Kind;

quint64 Outbox::put(const OutgoingMessage &message)
{
    if (m_lost)
        return 1;
    if (message.kind == Kind::Position && replacePosition(message))
        return 0;
    if (message.kind == Kind::Existence)
        dropPosition(message.callsign);
    else if (message.kind == Kind::ExistenceOfAll)
        dropPositions();
    append(message);
    if (m_bytes + perMessage * static_cast<qsizetype>(m_waiting.size()) <= mostBytes)
        return 0;
    const auto lost = static_cast<quint64>(m_waiting.size());
    m_waiting.clear();
    m_positions.clear();
    m_bytes = 0;
    m_lost = true;
    return lost;
}

std::optional<QByteArray> Outbox::next()
{
    if (m_waiting.empty())
        return std::nullopt;
    const auto first = m_waiting.begin();
    if (first->kind == Kind::Position)
        m_positions.remove(first->callsign);
    QByteArray bytes = std::move(first->bytes);
    m_bytes -= bytes.size();
    m_waiting.pop_front();
    return bytes;
}

bool Outbox::takeLoss()
{
    return std::exchange(m_lost, false);
}

bool Outbox::replacePosition(const OutgoingMessage &message)
{
    const auto position = m_positions.constFind(message.callsign);
    if (position == m_positions.cend())
        return false;
    QByteArray &bytes = (*position)->bytes;
    m_bytes += message.bytes.size() - bytes.size();
    bytes = message.bytes;
    return true;
}

void Outbox::dropPosition(const QString &callsign)
{
    if (const auto position = m_positions.constFind(callsign); position != m_positions.cend()) {
        erase(*position);
        m_positions.erase(position);
    }
}

void Outbox::dropPositions()
{
    for (const Waiting::iterator &position : std::as_const(m_positions))
        erase(position);
    m_positions.clear();
}

void Outbox::append(const OutgoingMessage &message)
{
    m_waiting.push_back(message);
    m_bytes += message.bytes.size();
    if (message.kind == Kind::Position)
        m_positions.insert(message.callsign, std::prev(m_waiting.end()));
}

void Outbox::erase(Waiting::iterator message)
{
    m_bytes -= message->bytes.size();
    m_waiting.erase(message);
}

} // namespace tarvo::simulator::xplane
