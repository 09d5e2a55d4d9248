#pragma once

#include <algorithm>

namespace tarvo::model {
struct AircraftConfiguration;
struct UserAircraftConfigData;
} // namespace tarvo::model

namespace tarvo::manager {

/// The configuration that other pilots are told of: everything but `isFullData`. Flaps go in steps of 5 per cent.
model::AircraftConfiguration configurationOf(const model::UserAircraftConfigData &data);

/// How many configuration messages may go out: ten in a burst, then one for each token that is added.
class ConfigurationBudget
{
public:
    bool isEmpty() const { return m_tokens == 0; }
    void take() { --m_tokens; }
    void add() { m_tokens = std::min(m_tokens + 1, maximum); }

private:
    static constexpr int maximum = 10;
    int m_tokens = maximum;
};

} // namespace tarvo::manager
