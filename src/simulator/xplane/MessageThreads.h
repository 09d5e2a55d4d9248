#pragma once

namespace tarvo::simulator::xplane {

/// Starts the message library and makes its threads cheap neighbours; they live as long as the process. To be called
/// before the library's first use; later calls do nothing.
void startMessageThreads();

} // namespace tarvo::simulator::xplane
