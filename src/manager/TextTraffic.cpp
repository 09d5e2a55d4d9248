#include "manager/TextTraffic.h"

#include "fsd/pdu/BroadcastMessage.h"
#include "fsd/pdu/RadioMessage.h"
#include "fsd/pdu/TextMessage.h"
#include "fsd/pdu/Wallop.h"
#include "manager/Notifications.h"
#include "manager/OneLine.h"
#include "manager/OwnAircraft.h"
#include "manager/RadioReception.h"
#include "manager/SelcalCode.h"
#include "manager/ServerCallsign.h"

namespace tarvo::manager {

using simulator::Simulator;
using namespace fsd::pdu;

namespace {

constexpr int serverMessageColour = 0x85A664;
constexpr int broadcastColour = 0xFFA500;
constexpr int wallopColour = 0xEB2F06;

} // namespace

TextTraffic::TextTraffic(SessionContext &session, const OwnAircraft &own, QObject *parent)
    : QObject(parent), m_session(session), m_own(own)
{
}

// --- what is heard ---

std::shared_ptr<Simulator> TextTraffic::simulatorWhile(const SessionMark &mark) const
{
    return mark.holds() ? m_session.simulator : nullptr;
}

void TextTraffic::onTextMessage(const TextMessage &pdu)
{
    const QString from = pdu.From;
    const QString message = pdu.message;
    const SessionMark mark = m_session.mark();
    if (isServer(from)) {
        emit serverMessageReceived(message);
        if (mark.holds())
            showNotification(m_session, message, serverMessageColour);
        return;
    }
    emit privateMessageReceived(from, message);
    if (const std::shared_ptr<Simulator> simulator = simulatorWhile(mark))
        simulator->showPrivateMessageReceived(from.toUpper(), message);
}

void TextTraffic::onBroadcastMessage(const BroadcastMessage &pdu)
{
    const QString from = pdu.From.toUpper();
    const QString message = pdu.message;
    const SessionMark mark = m_session.mark();
    emit broadcastMessageReceived(from, message);
    if (mark.holds())
        showNotification(m_session, QStringLiteral("[BROADCAST] %1: %2").arg(from, message), broadcastColour);
}

void TextTraffic::onRadioMessage(const RadioMessage &pdu)
{
    const model::RadioStackState radio = m_own.data().radio;
    const QList<uint> heard = heardFrequencies(pdu.frequencies, radio);
    if (heard.isEmpty())
        return;
    const QString from = pdu.From.toUpper();
    if (const std::optional<QString> called = calledSelcal(pdu.message)) {
        if (isOwnSelcal(*called, m_session.info.selcal)) // a call for somebody else is silent, and none shows as text
            onSelcal(from, heard);
        return;
    }
    const network::RadioMessageReceived received{.from = from,
                                                 .message = pdu.message,
                                                 .frequencies = QVariant::fromValue(heard),
                                                 .direct = pdu.message.toUpper().startsWith(m_session.info.callsign),
                                                 .dualReceive = radio.com1ReceiveEnabled && radio.com2ReceiveEnabled};
    const SessionMark mark = m_session.mark();
    emit radioMessageReceived(received);
    if (const std::shared_ptr<Simulator> simulator = simulatorWhile(mark))
        simulator->showRadioMessageReceived(received.from, received.message, received.direct);
}

void TextTraffic::onSelcal(const QString &from, const QList<uint> &frequencies)
{
    const SessionMark mark = m_session.mark();
    emit selcalAlertReceived(from, frequencies);
    if (const std::shared_ptr<Simulator> simulator = simulatorWhile(mark))
        simulator->selcalAlert();
}

// --- what is sent; a line end that is typed must not begin another line ---

void TextTraffic::sendRadioMessage(const QString &message)
{
    const QList<uint> frequencies = m_own.transmitFrequencies();
    if (frequencies.isEmpty())
        return;
    m_session.send(RadioMessage(m_session.info.callsign, frequencies, onOneLine(message)));
    const SessionMark mark = m_session.mark();
    if (const std::shared_ptr<Simulator> simulator = m_session.simulator)
        simulator->showRadioMessageSent(message);
    if (mark.holds())
        emit radioMessageSent(message, frequencies);
}

void TextTraffic::sendPrivateMessage(const QString &to, const QString &message)
{
    m_session.send(TextMessage(m_session.info.callsign, onOneLine(to.toUpper()), onOneLine(message)));
    const SessionMark mark = m_session.mark();
    if (const std::shared_ptr<Simulator> simulator = m_session.simulator)
        simulator->showPrivateMessageSent(to, message);
    if (mark.holds())
        emit privateMessageSent(to, message);
}

void TextTraffic::sendWallop(const QString &message)
{
    m_session.send(Wallop(m_session.info.callsign, onOneLine(message)));
    const SessionMark mark = m_session.mark();
    emit wallopSent(message);
    if (mark.holds())
        showNotification(m_session, QStringLiteral("[WALLOP] %1").arg(message), wallopColour);
}

} // namespace tarvo::manager
