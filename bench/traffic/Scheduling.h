#pragma once

namespace tarvo::bench {

/// Starts nng's threads as the client does, and makes ordinary ones of them again: what it is like without their batch
/// scheduling. Does nothing more where there is none.
void startOrdinaryMessageThreads();

} // namespace tarvo::bench
