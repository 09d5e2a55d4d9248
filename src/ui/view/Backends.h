#pragma once

#include "ui/viewmodel/DashboardViewModel.h"
#include "ui/viewmodel/MessagesPageViewModel.h"
#include "ui/viewmodel/PlotLabels.h"
#include "ui/viewmodel/RowList.h"
#include "ui/viewmodel/ServerPageViewModel.h"
#include "ui/viewmodel/SimulatorPageViewModel.h"

#include <QtQml/qqml.h>

// The view models as types of the QML module "com.tarvonet.backend", so that pages can say which one they take. They
// stand here and not with the view models, which know nothing of QML.

namespace tarvo::ui {

struct DashboardBackend
{
    Q_GADGET
    QML_FOREIGN(tarvo::ui::DashboardViewModel)
    QML_NAMED_ELEMENT(DashboardBackend)
    QML_UNCREATABLE("the main window has it")
};

struct SimulatorBackend
{
    Q_GADGET
    QML_FOREIGN(tarvo::ui::SimulatorPageViewModel)
    QML_NAMED_ELEMENT(SimulatorBackend)
    QML_UNCREATABLE("the main window has it")
};

struct ServerBackend
{
    Q_GADGET
    QML_FOREIGN(tarvo::ui::ServerPageViewModel)
    QML_NAMED_ELEMENT(ServerBackend)
    QML_UNCREATABLE("the main window has it")
};

struct MessagesBackend
{
    Q_GADGET
    QML_FOREIGN(tarvo::ui::MessagesPageViewModel)
    QML_NAMED_ELEMENT(MessagesBackend)
    QML_UNCREATABLE("the main window has it")
};

struct RowListType
{
    Q_GADGET
    QML_FOREIGN(tarvo::ui::RowList)
    QML_NAMED_ELEMENT(RowList)
    QML_UNCREATABLE("a backend has it")
};

struct PlotLabelsType
{
    Q_GADGET
    QML_FOREIGN(tarvo::ui::PlotLabels)
    QML_NAMED_ELEMENT(PlotLabels)
    QML_UNCREATABLE("a backend has it")
};

} // namespace tarvo::ui
