#include "fsd/pdu/AnyPdu.h"

#include <QMetaType>

namespace {

template <class... Pdu>
bool registerAll(const std::variant<Pdu...> *)
{
    (qRegisterMetaType<Pdu>(), ...);
    return true;
}

/// QSignalSpy must know the types of a signal's arguments; FsdClient.h only names them.
const bool registered = registerAll(static_cast<const tarvo::fsd::AnyPdu *>(nullptr));

} // namespace
