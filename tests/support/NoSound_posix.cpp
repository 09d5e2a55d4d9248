#include "support/NoSound.h"

#include "support/SoundServer.h"

namespace tarvo::test {

void leaveSoundAlone()
{
    static const SoundServer notStarted;
}

} // namespace tarvo::test
