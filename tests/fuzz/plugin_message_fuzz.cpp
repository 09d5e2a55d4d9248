// Any bytes as a message of the X-Plane plugin.
#include "simulator/xplane/PluginReports.h"

using namespace tarvo::simulator::xplane;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    const QByteArrayView message(data, static_cast<qsizetype>(size));
    const PluginReport report = unpackReport(message);
    if (report != unpackReport(message))
        __builtin_trap(); // the same bytes mean the same thing
    return 0;
}
