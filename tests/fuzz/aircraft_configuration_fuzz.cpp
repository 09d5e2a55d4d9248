// Configuration texts of other pilots: anything may stand in them. What was read and written reads the same again.
#include "model/AircraftConfiguration.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using tarvo::model::AircraftConfiguration;
using tarvo::model::AircraftConfigurationMessage;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text = QString::fromLatin1(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const AircraftConfigurationMessage message = AircraftConfigurationMessage::parse(text);
    const QString written = message.compose();
    if (AircraftConfigurationMessage::parse(written).compose() != written)
        std::abort();
    if (!message.configuration)
        return 0;
    const AircraftConfiguration &configuration = *message.configuration;
    if (differs(configuration, configuration) || differs(incrementOf({}, configuration), configuration))
        std::abort();
    AircraftConfiguration record;
    merge(record, configuration);
    return 0;
}
