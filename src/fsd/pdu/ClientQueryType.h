#pragma once

#include <QString>

namespace tarvo::fsd::pdu {

/// What a query is about. On the wire a token, such as "CAPS".
enum class ClientQueryType : quint8
{
    Unknown = 0,                ///< ""
    IsValidAtc = 1,             ///< "ATC"
    Capabilities = 2,           ///< "CAPS"
    Com1Frequency = 3,          ///< "C?"
    RealName = 4,               ///< "RN"
    Server = 5,                 ///< "SV"
    Atis = 6,                   ///< "ATIS"
    PublicAddress = 7,          ///< "IP"
    ClientInformation = 8,      ///< "INF"
    FlightPlan = 9,             ///< "FP"
    Ipc = 10,                   ///< "IPC"
    RequestRelief = 11,         ///< "BY"
    CancelRelief = 12,          ///< "HI"
    RequestHelp = 13,           ///< "HLP"
    CancelHelp = 14,            ///< "NOHLP"
    WhoHas = 15,                ///< "WH"
    InitiateTrack = 16,         ///< "IT"
    AcceptHandoff = 17,         ///< "HT"
    DropTrack = 18,             ///< "DR"
    FinalAltitude = 19,         ///< "FA"
    TemporaryAltitude = 20,     ///< "TA"
    BeaconCode = 21,            ///< "BC"
    Scratchpad = 22,            ///< "SC"
    VoiceType = 23,             ///< "VT"
    AircraftConfiguration = 24, ///< "ACC"
    NewInfo = 25,               ///< "NEWINFO"
    NewAtis = 26,               ///< "NEWATIS"
    Estimate = 27,              ///< "EST"
    GlobalData = 28,            ///< "GD"
};

/// The type of a token, compared with case; Unknown for one that isn't in the table.
ClientQueryType toClientQueryType(QStringView token);
/// The token of a type; empty for Unknown.
QLatin1StringView tokenOf(ClientQueryType type);

} // namespace tarvo::fsd::pdu
