#pragma once

namespace tarvo::simulator::xplane {

/// Keeps nng's pool of threads to two, however many processors there are, where that can be done. To be called before
/// nng's first use; later calls do nothing.
void limitMessagePool();

} // namespace tarvo::simulator::xplane
