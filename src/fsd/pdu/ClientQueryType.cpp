#include "fsd/pdu/ClientQueryType.h"

#include <array>

namespace tarvo::fsd::pdu {

namespace {

/// The token of each type at the index of its value.
constexpr std::array<const char *, 29> tokens{
    "",   "ATC", "CAPS", "C?", "RN", "SV", "ATIS", "IP", "INF", "FP",  "IPC",     "BY",      "HI",  "HLP", "NOHLP",
    "WH", "IT",  "HT",   "DR", "FA", "TA", "BC",   "SC", "VT",  "ACC", "NEWINFO", "NEWATIS", "EST", "GD"};

} // namespace

ClientQueryType toClientQueryType(QStringView token)
{
    for (size_t i = 0; i < tokens.size(); ++i) {
        if (token == QLatin1StringView(tokens[i]))
            return static_cast<ClientQueryType>(i);
    }
    return ClientQueryType::Unknown;
}

QLatin1StringView tokenOf(ClientQueryType type)
{
    const auto index = static_cast<size_t>(type);
    return QLatin1StringView(index < tokens.size() ? tokens[index] : "");
}

} // namespace tarvo::fsd::pdu
