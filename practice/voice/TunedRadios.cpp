#include "practice/voice/TunedRadios.h"

#include <algorithm>
#include <charconv>

namespace tarvo::practice {

std::optional<TunedRadio> parseChannel(std::string_view data)
{
    constexpr int frequencyLimit = 200'000;
    TunedRadio radio;
    const char *end = data.data() + data.size();
    const auto [rest, error] = std::from_chars(data.data(), end, radio.frequency);
    const std::string_view flag(rest, static_cast<std::size_t>(end - rest));
    if (error != std::errc() || radio.frequency < 0 || radio.frequency >= frequencyLimit)
        return std::nullopt;
    if (flag != ":0" && flag != ":1")
        return std::nullopt;
    radio.receive = flag == ":1";
    return radio;
}

bool TunedRadios::tune(int transmitter, const TunedRadio &radio)
{
    if (transmitter < 0 || transmitter >= mostTransmitters)
        return false;
    m_radios[transmitter] = radio;
    return true;
}

bool TunedRadios::receives(int frequency) const
{
    return std::any_of(m_radios.begin(), m_radios.end(),
                       [frequency](const TunedRadio &radio) { return radio.receive && radio.frequency == frequency; });
}

bool TunedRadios::isTuned(int frequency) const
{
    return std::any_of(m_radios.begin(), m_radios.end(),
                       [frequency](const TunedRadio &radio) { return radio.frequency == frequency; });
}

} // namespace tarvo::practice
