#include "diagnosis/Checkup.h"

#include "ServiceEndpoints.h"
#include "diagnosis/ConfigCheck.h"
#include "diagnosis/FolderCheck.h"
#include "diagnosis/PortCheck.h"
#include "diagnosis/ServiceCheck.h"
#include "diagnosis/SimulatorCheck.h"
#include "diagnosis/SoundCheck.h"
#include "diagnosis/StoredSettings.h"
#include "diagnosis/TimeLimit.h"
#include "simulator/msfs/simconnect/SimConnectBinding.h"
#include "simulator/msfs/simconnect/SimConnectLibrary.h"
#include "simulator/xplane/SimulatorAddress.h"

#include <QFileInfo>
#include <QSysInfo>

namespace tarvo::diagnosis {

namespace {

using namespace std::chrono_literals;
using model::SimulatorMode;

constexpr auto diskLimit = 3s;
constexpr auto xplaneLimit = 2s;
constexpr auto pluginLimit = 1s;
constexpr auto soundLimit = 8s; ///< a sound server that has to be started first

QStringList missingOf(QStringList folders)
{
    folders.removeIf([](const QString &folder) { return QFileInfo(folder).isDir(); });
    return folders;
}

Findings checkData(const CheckupPlan &plan)
{
    Findings findings =
        judgeFolder(plan.dataRoot, within(diskLimit, [root = plan.dataRoot] { return lookAtFolder(root); }));
    findings << judgeSettings(plan.settings, configSecret());
    const QStringList folders = foldersOf(plan.settings);
    return findings << judgeFolders(folders, within(diskLimit, [folders] { return missingOf(folders); }));
}

Findings checkServices(const CheckupPlan &plan)
{
    Findings findings;
    for (const LocalPort &port : localServicePorts(plan.endpoints))
        findings << judgePort(port, tryPort(port));
    for (const Service &service : servicesOf(plan.endpoints))
        findings << judgeService(service, tryService(service));
    return findings;
}

bool isOnWindows()
{
    return QSysInfo::kernelType() == QLatin1StringView("winnt");
}

Findings checkXPlane(const CheckupPlan &plan)
{
    using namespace simulator::xplane;
    if (plan.simulator.value_or(SimulatorMode::XPlane) != SimulatorMode::XPlane)
        return {};
    const QString configured = plan.settings.text(config::xplaneNetworkAddress);
    const quint16 port = datarefPort(plan.settings.number(config::xplaneUdpPort));
    const QHostAddress address = datarefHost(configured);
    Findings findings;
    if (isLocalMachine(configured)) {
        const LocalPort local{QStringLiteral("X-Plane"), QStringLiteral("X-Plane"), Protocol::Udp, address, port};
        findings << judgePort(local, tryPort(local));
    }
    findings << judgeXPlane(address, port, !address.isNull() && xplaneAnswers(address, port, xplaneLimit));
    if (isLocalMachine(configured)) {
        const QString name = localSocketName(plan.endpoints.localPluginUrl, isOnWindows());
        findings << judgePlugin(lookAtPlugin(name, pluginLimit));
    }
    return findings;
}

Findings checkMsfs(const CheckupPlan &plan)
{
    if (plan.simulator.value_or(SimulatorMode::Msfs) != SimulatorMode::Msfs)
        return {};
    simulator::msfs::SimConnectBinding binding(simulator::msfs::systemSimConnectLibrary());
    return {judgeSimConnect(binding, isOnWindows())};
}

Findings checkSound(const CheckupPlan &plan)
{
    return judgeSound(lookAtSound(plan.program, soundLimit), plan.settings);
}

} // namespace

Findings checkUp(const CheckupPlan &plan, const std::function<void(const Finding &)> &tell)
{
    Findings all;
    for (const auto check : {checkData, checkServices, checkXPlane, checkMsfs, checkSound}) {
        const Findings findings = check(plan);
        for (const Finding &finding : findings)
            tell(finding);
        all << findings;
    }
    return all;
}

} // namespace tarvo::diagnosis
