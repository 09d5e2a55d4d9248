#include "fsd/pdu/AnyPdu.h"

#include "fsd/pdu/PDUFormatException.h"

#include <array>

namespace tarvo::fsd {

namespace {

using pdu::FastPilotPositionType;

/// What a row of the table does with the fields, the identifier taken off the first, and the whole line.
using Parse = AnyPdu (*)(const QStringList &fields, const QString &line);

struct Row
{
    QLatin1StringView identifier;
    Parse parse;
};

[[noreturn]] void failWithInvalidType(const QString &line)
{
    throw PDUFormatException(QStringLiteral("Invalid PDU type."), line);
}

template <class Pdu>
AnyPdu parseAs(const QStringList &fields, const QString &)
{
    return Pdu::parse(fields);
}

template <FastPilotPositionType type>
AnyPdu parseFast(const QStringList &fields, const QString &)
{
    return pdu::FastPilotPosition::parse(fields, type);
}

/// "#TM": the receiver picks the class.
AnyPdu parseText(const QStringList &fields, const QString &)
{
    if (fields.size() < 3)
        throw PDUFormatException(QStringLiteral("Invalid field count."), fields.join(QLatin1Char(':')));
    const QString &receiver = fields[1];
    if (receiver == QLatin1StringView("*") || receiver == QLatin1StringView("*A") ||
        receiver == QLatin1StringView("*P"))
        return pdu::BroadcastMessage::parse(fields);
    if (receiver == QLatin1StringView("*S"))
        return pdu::Wallop::parse(fields);
    if (receiver.startsWith(QLatin1Char('@')))
        return pdu::RadioMessage::parse(fields);
    return pdu::TextMessage::parse(fields);
}

/// "#SB": the third field, and the fourth, pick the class.
AnyPdu parsePlaneInfo(const QStringList &fields, const QString &line)
{
    if (fields.size() >= 3 && fields[2] == QLatin1StringView("PIR"))
        return pdu::PlaneInfoRequest::parse(fields);
    if (fields.size() >= 4 && fields[2] == QLatin1StringView("PI") && fields[3] == QLatin1StringView("GEN"))
        return pdu::PlaneInfoResponse::parse(fields);
    failWithInvalidType(line);
}

constexpr std::array rows{
    Row{pdu::PilotPosition::identifier, parseAs<pdu::PilotPosition>},
    Row{QLatin1StringView("^"), parseFast<FastPilotPositionType::Fast>},
    Row{pdu::ATCPosition::identifier, parseAs<pdu::ATCPosition>},
    Row{pdu::ServerIdentification::identifier, parseAs<pdu::ServerIdentification>},
    Row{pdu::ClientIdentification::identifier, parseAs<pdu::ClientIdentification>},
    Row{pdu::AddATC::identifier, parseAs<pdu::AddATC>},
    Row{pdu::DeleteATC::identifier, parseAs<pdu::DeleteATC>},
    Row{pdu::AddPilot::identifier, parseAs<pdu::AddPilot>},
    Row{pdu::DeletePilot::identifier, parseAs<pdu::DeletePilot>},
    Row{pdu::TextMessage::identifier, parseText},
    Row{pdu::MetarResponse::identifier, parseAs<pdu::MetarResponse>},
    Row{pdu::FlightPlan::identifier, parseAs<pdu::FlightPlan>},
    Row{pdu::PlaneInfoRequest::identifier, parsePlaneInfo},
    Row{pdu::Ping::identifier, parseAs<pdu::Ping>},
    Row{pdu::Pong::identifier, parseAs<pdu::Pong>},
    Row{pdu::ClientQuery::identifier, parseAs<pdu::ClientQuery>},
    Row{pdu::ClientQueryResponse::identifier, parseAs<pdu::ClientQueryResponse>},
    Row{pdu::AuthChallenge::identifier, parseAs<pdu::AuthChallenge>},
    Row{pdu::KillRequest::identifier, parseAs<pdu::KillRequest>},
    Row{pdu::ProtocolError::identifier, parseAs<pdu::ProtocolError>},
    Row{pdu::SendFast::identifier, parseAs<pdu::SendFast>},
    Row{QLatin1StringView("#SL"), parseFast<FastPilotPositionType::Slow>},
    Row{QLatin1StringView("#ST"), parseFast<FastPilotPositionType::Stopped>},
    Row{pdu::ChangeServer::identifier, parseAs<pdu::ChangeServer>},
    Row{pdu::Mute::identifier, parseAs<pdu::Mute>},
};

/// The row whose identifier the line starts with, compared with case. An identifier holds no ":", so that only the
/// first field can match, and one that is too short for an identifier matches none.
const Row *rowFor(QStringView line)
{
    for (const Row &row : rows) {
        if (line.startsWith(row.identifier))
            return &row;
    }
    return nullptr;
}

} // namespace

AnyPdu parseLine(const QString &line)
{
    const Row *row = rowFor(line);
    if (!row)
        failWithInvalidType(line);
    return row->parse(line.sliced(row->identifier.size()).split(QLatin1Char(':')), line);
}

} // namespace tarvo::fsd
