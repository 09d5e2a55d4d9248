// Configuration texts of other pilots: anything may stand in them. What was read and written reads the same again; the
// first line changed into the second and merged tells what the second tells.
#include "model/AircraftConfiguration.h"

#include <QStringList>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using tarvo::model::AircraftConfiguration;
using tarvo::model::AircraftConfigurationMessage;

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

AircraftConfiguration read(const QString &text)
{
    const AircraftConfigurationMessage message = AircraftConfigurationMessage::parse(text);
    const QString written = message.compose();
    require(AircraftConfigurationMessage::parse(written).compose() == written);
    // The server cuts the text at its colons, and the client joins it again.
    require(AircraftConfigurationMessage::parse(text.split(QLatin1Char(':')).join(QLatin1Char(':'))) == message);
    return message.configuration.value_or(AircraftConfiguration());
}

template <class T>
bool isMerged(const std::optional<T> &before, const std::optional<T> &message, const std::optional<T> &after)
{
    return after == (message ? message : before);
}

void checkMerge(const AircraftConfiguration &before, const AircraftConfiguration &message)
{
    AircraftConfiguration after = before;
    merge(after, message);
    require(after.isFullData == before.isFullData);
    require(isMerged(before.gearDown, message.gearDown, after.gearDown));
    require(isMerged(before.flapsPct, message.flapsPct, after.flapsPct));
    require(isMerged(before.spoilersOut, message.spoilersOut, after.spoilersOut));
    require(isMerged(before.onGround, message.onGround, after.onGround));
    const AircraftConfiguration::Lights &lights = message.lights.hasValue() ? message.lights : before.lights;
    require(after.lights.strobeOn == lights.strobeOn && after.lights.landingOn == lights.landingOn &&
            after.lights.taxiOn == lights.taxiOn && after.lights.beaconOn == lights.beaconOn &&
            after.lights.navOn == lights.navOn);
    require(after.engines == (message.engines.hasValue() ? message.engines : before.engines));
    AircraftConfiguration again = after;
    merge(again, message);
    require(again == after);
}

void checkIncrement(const AircraftConfiguration &before, const AircraftConfiguration &now)
{
    const AircraftConfiguration increment = incrementOf(before, now);
    require(!increment.isFullData && increment.lights.present && increment.engines.present);
    if (differs(before, now))
        return;
    require(!increment.lights.hasValue() && !increment.engines.hasValue() && !increment.gearDown &&
            !increment.flapsPct && !increment.spoilersOut && !increment.onGround);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text = QString::fromLatin1(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const qsizetype end = text.indexOf(QLatin1Char('\n'));
    const AircraftConfiguration first = read(end < 0 ? text : text.left(end));
    const AircraftConfiguration second = read(end < 0 ? QString() : text.mid(end + 1));
    require(!differs(first, first) && !differs(incrementOf({}, first), first));
    require(differs(first, second) == differs(second, first));
    checkMerge(first, second);
    checkMerge(second, first);
    checkIncrement(first, second);
    checkIncrement(second, first);
    return 0;
}
