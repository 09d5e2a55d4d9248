// Any datagram as a reply of X-Plane: read, and folded into the own aircraft's sample.
#include "simulator/xplane/DatarefTable.h"
#include "simulator/xplane/RrefPacket.h"

#include <cstdlib>

using namespace tarvo::simulator::xplane;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    const RrefReply reply(QByteArrayView(data, static_cast<qsizetype>(size)));
    if (!reply.isValid())
        return 0;
    DatarefSample sample;
    for (qsizetype i = 0; i < reply.count(); ++i) {
        const RrefRecord record = reply.record(i);
        applyDataref(sample, record.id, record.value);
    }
    if (sample.radio.com1Volume > 100 || sample.radio.com2Volume > 100)
        std::abort();
    return 0;
}
