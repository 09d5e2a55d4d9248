#include "manager/ConnectRequest.h"

#include "common/Callsign.h"

#include <QCoreApplication>

namespace tarvo::manager {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(tarvo::manager::ConnectRequest)
};

QString refusalOfPilot(const ConnectRequest &request, const ConnectConditions &conditions)
{
    if (request.typeCode.trimmed().isEmpty())
        return Texts::tr("Callsign and Type Code are required.");
    if (!conditions.simulatorReady)
        return Texts::tr("飞行员模式连接 FSD 前，请先连接模拟器并等待有效的飞机数据。");
    return {};
}

} // namespace

QString refusalOf(const ConnectRequest &request, const ConnectConditions &conditions)
{
    if (conditions.busy)
        return Texts::tr("Already connected or connecting to network. Disconnect before changing callsign.");
    if (request.callsign.isEmpty())
        return request.observer ? Texts::tr("Callsign is required for observer mode.")
                                : Texts::tr("Callsign and Type Code are required.");
    if (!common::isCallsign(request.callsign))
        return Texts::tr("Invalid callsign. Use only A-Z, 0-9, or underscore; spaces and Chinese characters are not "
                         "allowed.");
    return request.observer ? QString() : refusalOfPilot(request, conditions);
}

} // namespace tarvo::manager
