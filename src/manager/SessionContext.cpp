#include "manager/SessionContext.h"

#include "AppConfig.h"
#include "manager/OneLine.h"
#include "manager/PilotName.h"
#include "network/ApiService.h"
#include "simulator/Simulator.h"

namespace tarvo::manager {

using simulator::Simulator;

void SessionContext::clearSimulator() const
{
    if (const std::shared_ptr<Simulator> current = simulator)
        current->removeAllAircraft();
    if (const std::shared_ptr<Simulator> current = simulator)
        current->clearControllers();
}

bool SessionContext::usesTokens() const
{
    return config.get(config::authVatsim);
}

QString SessionContext::username() const
{
    return onOneLine(signInName(config));
}

QString SessionContext::realName() const
{
    return onOneLine(pilotName(config, api));
}

QString SessionContext::realNameWithAirport() const
{
    return nameWithAirport(realName(), onOneLine(homeAirport(config.get(config::profileHomeAirport))));
}

} // namespace tarvo::manager
