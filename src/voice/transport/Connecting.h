#pragma once

#include <memory>

namespace tarvo {
struct ServiceEndpoints;
} // namespace tarvo

namespace tarvo::voice {

class Connection;

/// Reaches the voice server over both sockets and signs in: leaves Established or Failed in the connection's inbox.
/// Blocks, and ends soon once the connection has been ended.
void reachServer(const std::shared_ptr<Connection> &connection, const ServiceEndpoints &endpoints);

} // namespace tarvo::voice
