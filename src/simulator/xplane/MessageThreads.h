#pragma once

namespace tarvo::simulator::xplane {

/// Starts the message library, whose threads then live as long as the process. To be called before its first use; later
/// calls do nothing.
void startMessageThreads();

} // namespace tarvo::simulator::xplane
