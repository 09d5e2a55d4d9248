#pragma once

#include "fsd/pdu/ATCPosition.h"
#include "fsd/pdu/AddATC.h"
#include "fsd/pdu/AddPilot.h"
#include "fsd/pdu/AuthChallenge.h"
#include "fsd/pdu/BroadcastMessage.h"
#include "fsd/pdu/ChangeServer.h"
#include "fsd/pdu/ClientIdentification.h"
#include "fsd/pdu/ClientQuery.h"
#include "fsd/pdu/ClientQueryResponse.h"
#include "fsd/pdu/DeleteATC.h"
#include "fsd/pdu/DeletePilot.h"
#include "fsd/pdu/FastPilotPosition.h"
#include "fsd/pdu/FlightPlan.h"
#include "fsd/pdu/KillRequest.h"
#include "fsd/pdu/MetarResponse.h"
#include "fsd/pdu/Mute.h"
#include "fsd/pdu/PilotPosition.h"
#include "fsd/pdu/Ping.h"
#include "fsd/pdu/PlaneInfoRequest.h"
#include "fsd/pdu/PlaneInfoResponse.h"
#include "fsd/pdu/Pong.h"
#include "fsd/pdu/ProtocolError.h"
#include "fsd/pdu/RadioMessage.h"
#include "fsd/pdu/SendFast.h"
#include "fsd/pdu/ServerIdentification.h"
#include "fsd/pdu/TextMessage.h"
#include "fsd/pdu/Wallop.h"

#include <variant>

namespace tarvo::fsd {

/// Every PDU that a client can receive.
using AnyPdu = std::variant<pdu::PilotPosition, pdu::FastPilotPosition, pdu::ATCPosition, pdu::ServerIdentification,
                            pdu::ClientIdentification, pdu::AddATC, pdu::DeleteATC, pdu::AddPilot, pdu::DeletePilot,
                            pdu::BroadcastMessage, pdu::Wallop, pdu::RadioMessage, pdu::TextMessage, pdu::MetarResponse,
                            pdu::FlightPlan, pdu::PlaneInfoRequest, pdu::PlaneInfoResponse, pdu::Ping, pdu::Pong,
                            pdu::ClientQuery, pdu::ClientQueryResponse, pdu::AuthChallenge, pdu::KillRequest,
                            pdu::ProtocolError, pdu::SendFast, pdu::ChangeServer, pdu::Mute>;

/// Picks the class of a line, which has no line end any more and is not empty, and parses it. Throws
/// PDUFormatException.
AnyPdu parseLine(const QString &line);

} // namespace tarvo::fsd
