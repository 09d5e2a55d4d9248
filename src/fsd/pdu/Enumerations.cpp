#include "fsd/pdu/Enumerations.h"

#include <algorithm>
#include <array>

namespace tarvo::fsd::pdu {

namespace {

constexpr std::array ratings{-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
constexpr std::array facilities{0, 1, 2, 3, 4, 5, 6};
constexpr std::array revisions{0, 9, 10, 100, 101};
constexpr std::array simulators{0, 1, 2, 3, 4, 5};

template <class E, size_t size>
E lookUp(const std::array<int, size> &known, QStringView text)
{
    const int value = text.toInt();
    const bool isKnown = std::find(known.begin(), known.end(), value) != known.end();
    return static_cast<E>(isKnown && text == QString::number(value) ? value : 0); // "01" is not 1
}

} // namespace

NetworkRating toNetworkRating(QStringView text)
{
    return lookUp<NetworkRating>(ratings, text);
}

NetworkFacility toNetworkFacility(QStringView text)
{
    return lookUp<NetworkFacility>(facilities, text);
}

ProtocolRevision toProtocolRevision(QStringView text)
{
    return lookUp<ProtocolRevision>(revisions, text);
}

SimulatorType toSimulatorType(QStringView text)
{
    return lookUp<SimulatorType>(simulators, text);
}

} // namespace tarvo::fsd::pdu
