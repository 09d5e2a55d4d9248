#pragma once

namespace tarvo {
class StateFile;
namespace model {
struct ConnectInfo;
}
} // namespace tarvo

namespace tarvo::ui {

class ServerPageViewModel;

/// Notes with what the pilot is on the network. An observer may leave the type out: the last one stays.
void rememberConnection(const model::ConnectInfo &info, StateFile &state);
/// Fills the connect form with what was remembered, cut to what its fields take.
void offerConnection(ServerPageViewModel &form, const StateFile &state);

} // namespace tarvo::ui
