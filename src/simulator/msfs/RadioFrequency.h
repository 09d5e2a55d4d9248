#pragma once

#include <QtGlobal>

namespace tarvo::simulator::msfs {

/// Hertz of a frequency that a caller gives: above 1,000,000 hertz, above 1,000 kilohertz, otherwise megahertz. 0 when
/// it is 0 or less. Single precision throughout, on purpose: above 134 MHz a channel may be 8 Hz off.
quint32 hertzOf(float frequency);

/// Kilohertz of a frequency that the simulator tells: megahertz, or kilohertz when it is above 1000. 0 when it is 0 or
/// less.
quint32 kilohertzOf(double frequency);

} // namespace tarvo::simulator::msfs
