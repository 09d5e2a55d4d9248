#include "support/NoSound.h"

namespace tarvo::test {

/// Where these tests run there are none: Wine without a sound server.
void leaveSoundAlone() {}

} // namespace tarvo::test
