#include "fsd/pdu/Enumerations.h"

#include <array>
#include <utility>

namespace tarvo::fsd::pdu {

namespace {

using Entry = std::pair<QLatin1StringView, int>;

constexpr std::array<Entry, 14> ratings{{{QLatin1StringView("-1"), -1},
                                         {QLatin1StringView("0"), 0},
                                         {QLatin1StringView("1"), 1},
                                         {QLatin1StringView("2"), 2},
                                         {QLatin1StringView("3"), 3},
                                         {QLatin1StringView("4"), 4},
                                         {QLatin1StringView("5"), 5},
                                         {QLatin1StringView("6"), 6},
                                         {QLatin1StringView("7"), 7},
                                         {QLatin1StringView("8"), 8},
                                         {QLatin1StringView("9"), 9},
                                         {QLatin1StringView("10"), 10},
                                         {QLatin1StringView("11"), 11},
                                         {QLatin1StringView("12"), 12}}};
constexpr std::array<Entry, 7> facilities{{{QLatin1StringView("0"), 0},
                                           {QLatin1StringView("1"), 1},
                                           {QLatin1StringView("2"), 2},
                                           {QLatin1StringView("3"), 3},
                                           {QLatin1StringView("4"), 4},
                                           {QLatin1StringView("5"), 5},
                                           {QLatin1StringView("6"), 6}}};
constexpr std::array<Entry, 5> revisions{{{QLatin1StringView("0"), 0},
                                          {QLatin1StringView("9"), 9},
                                          {QLatin1StringView("10"), 10},
                                          {QLatin1StringView("100"), 100},
                                          {QLatin1StringView("101"), 101}}};
constexpr std::array<Entry, 6> simulators{{{QLatin1StringView("0"), 0},
                                           {QLatin1StringView("1"), 1},
                                           {QLatin1StringView("2"), 2},
                                           {QLatin1StringView("3"), 3},
                                           {QLatin1StringView("4"), 4},
                                           {QLatin1StringView("5"), 5}}};

template <class E, class Table>
E lookUp(const Table &table, QStringView text)
{
    for (const auto &[wire, value] : table) {
        if (text == wire)
            return static_cast<E>(value);
    }
    return static_cast<E>(0);
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
