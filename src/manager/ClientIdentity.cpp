#include "manager/ClientIdentity.h"

#include "common/Units.h"
#include "simulator/Simulator.h"

#include <QSysInfo>

namespace tarvo::manager {

namespace {

QString generalNumber(double value)
{
    return QString::number(value, 'g', 6);
}

QString clientVersion()
{
    return QStringLiteral("%1.%2").arg(clientIdentity::majorVersion).arg(clientIdentity::minorVersion);
}

} // namespace

QString machineId()
{
    return QString::fromLatin1(QSysInfo::machineUniqueId());
}

QString ClientInformation::text() const
{
    const QString label = simulator ? simulator::simulatorTypeName(*simulator) : QStringLiteral("Observer");
    // One call with all arguments, so that a "%1" in a name stays what it is.
    return QStringLiteral("TARVO Client %1 PID=%2 (%3) IP=%4 SYS_UID=%5 FS_VER=%6 LT=%7 LO=%8 AL=%9")
        .arg(clientVersion(), cid, nameWithAirport, publicAddress, machineId(), label, generalNumber(latitude),
             generalNumber(longitude), generalNumber(altitudeMslM * common::feetPerMetre));
}

} // namespace tarvo::manager
