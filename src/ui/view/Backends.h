#pragma once

#include "ui/viewmodel/CompactViewModel.h"
#include "ui/viewmodel/DashboardViewModel.h"
#include "ui/viewmodel/LeaveQuestion.h"
#include "ui/viewmodel/MessagesPageViewModel.h"
#include "ui/viewmodel/PilotOverview.h"
#include "ui/viewmodel/PlotLabels.h"
#include "ui/viewmodel/ServerPageViewModel.h"
#include "ui/viewmodel/SettingsViewModel.h"
#include "ui/viewmodel/SimulatorPageViewModel.h"
#include "ui/viewmodel/SoundsViewModel.h"
#include "ui/viewmodel/StatusViewModel.h"
#include "ui/viewmodel/Tour.h"
#include "ui/viewmodel/VoiceServiceViewModel.h"
#include "ui/viewmodel/VoiceSettingsViewModel.h"

#include <QtQml/qqml.h>

// The view models as types of the QML module "com.tarvonet.backend", so that pages can say which one they take. They
// stand here and not with the view models, which know nothing of QML.

#define TARVO_BACKEND(Name, Model)                                                                                     \
    struct Name                                                                                                        \
    {                                                                                                                  \
        Q_GADGET                                                                                                       \
        QML_FOREIGN(tarvo::ui::Model)                                                                                  \
        QML_NAMED_ELEMENT(Name)                                                                                        \
        QML_UNCREATABLE("the main window has it")                                                                      \
    };

namespace tarvo::ui {

TARVO_BACKEND(CompactBackend, CompactViewModel)
TARVO_BACKEND(DashboardBackend, DashboardViewModel)
TARVO_BACKEND(SimulatorBackend, SimulatorPageViewModel)
TARVO_BACKEND(ServerBackend, ServerPageViewModel)
TARVO_BACKEND(LeaveBackend, LeaveQuestion)
TARVO_BACKEND(OverviewBackend, PilotOverview)
TARVO_BACKEND(MessagesBackend, MessagesPageViewModel)
TARVO_BACKEND(PlotLabelsBackend, PlotLabels)
TARVO_BACKEND(SoundsBackend, SoundsViewModel)
TARVO_BACKEND(StatusBackend, StatusViewModel)
TARVO_BACKEND(TourBackend, Tour)
TARVO_BACKEND(VoiceServiceBackend, VoiceServiceViewModel)
TARVO_BACKEND(SettingsBackend, viewmodel::SettingsViewModel)
TARVO_BACKEND(VoiceSettingsBackend, viewmodel::VoiceSettingsViewModel)

} // namespace tarvo::ui

#undef TARVO_BACKEND
