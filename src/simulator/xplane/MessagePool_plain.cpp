#include "simulator/xplane/MessagePool.h"

namespace tarvo::simulator::xplane {

void limitMessagePool() {} // this nng takes no wishes, and elsewhere than on Linux its threads can't be told apart

} // namespace tarvo::simulator::xplane
