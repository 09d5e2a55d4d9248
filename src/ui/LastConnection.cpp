#include "ui/LastConnection.h"

#include "StateFile.h"
#include "model/ConnectInfo.h"
#include "ui/viewmodel/ServerPageViewModel.h"

namespace tarvo::ui {

namespace {

constexpr StringKey lastCallsign{.key = "Connection/Callsign"};
constexpr StringKey lastType{.key = "Connection/Type"};
constexpr StringKey lastSelcal{.key = "Connection/Selcal"};
constexpr qsizetype longestOffered = 12; ///< characters; longer ones were never accepted

} // namespace

void rememberConnection(const model::ConnectInfo &info, StateFile &state)
{
    state.set(lastCallsign, info.callsign);
    if (!info.typeCode.isEmpty() || !info.observer)
        state.set(lastType, info.typeCode);
    state.set(lastSelcal, info.selcal);
}

void offerConnection(ServerPageViewModel &form, const StateFile &state)
{
    form.setCallsign(state.get(lastCallsign).left(longestOffered));
    form.setTypeCode(state.get(lastType).left(ServerPageViewModel::longestTypeCode()));
    form.setSelcal(state.get(lastSelcal).left(ServerPageViewModel::longestSelcal()));
}

} // namespace tarvo::ui
