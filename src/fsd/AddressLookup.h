#pragma once

#include <QByteArray>

#include <optional>

namespace tarvo::fsd {

/// Asks the system's name server for the first IPv4 address of `name`, which is in its wire form (ASCII). Blocks, with
/// a dead name server for many seconds. Any thread; uses nothing of Qt's that ends with the program.
std::optional<quint32> lookUpAddress(const QByteArray &name);

} // namespace tarvo::fsd
