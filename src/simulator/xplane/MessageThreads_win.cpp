#include "simulator/xplane/MessageThreads.h"

namespace tarvo::simulator::xplane {

void startMessageThreads() {} // they start with the first socket; nothing is to be said of them

} // namespace tarvo::simulator::xplane
