#pragma once

// Private to NetworkManager's source files.

#include "fsd/pdu/FsdLine.h"
#include "manager/NetworkManager.h"

namespace tarvo::manager {

template <class Pdu>
void NetworkManager::sendPdu(const Pdu &pdu)
{
    send(fsd::toLine(pdu));
}

} // namespace tarvo::manager
