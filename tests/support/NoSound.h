#pragma once

namespace tarvo::test {

/// The sound system of this program has no devices. Before PortAudio's first call.
void leaveSoundAlone();

} // namespace tarvo::test
