#pragma once

#include <QMap>

#include <optional>
#include <string_view>

namespace tarvo::practice {

/// What one transmitter of a client is tuned to.
struct TunedRadio
{
    int frequency = 0; ///< kHz; 0: none
    bool receive = false;

    bool operator==(const TunedRadio &) const = default;
};

/// The body of a channel line, "118700:1"; nothing for anything else. Frequencies are below 200000.
std::optional<TunedRadio> parseChannel(std::string_view data);

/// The transmitters of one client.
class TunedRadios
{
public:
    static constexpr int mostTransmitters = 8;

    /// False for a transmitter that nobody has.
    bool tune(int transmitter, const TunedRadio &radio);
    bool receives(int frequency) const;
    /// True when one of them is tuned to it, received or not: a pilot may speak there.
    bool isTuned(int frequency) const;
    const QMap<int, TunedRadio> &all() const { return m_radios; }

private:
    QMap<int, TunedRadio> m_radios; ///< by transmitter
};

} // namespace tarvo::practice
