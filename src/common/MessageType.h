#pragma once

namespace tarvo::common {

/// The kind of a message that is posted to the user. The numbers are part of the interface to the pages.
enum class MessageType
{
    Server = 0,
    IncomingPrivate = 1,
    OutgoingPrivate = 2,
    TextOverride = 3,
    IncomingRadioPrimary = 4,
    IncomingRadioSecondary = 5,
    OutgoingRadio = 6,
    Broadcast = 7,
    Wallop = 8,
    Info = 9,
    Error = 10,
};

} // namespace tarvo::common
