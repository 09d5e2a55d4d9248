// What other pilots and the server say of an aircraft: flight plan answers, aircraft fields, plane information. The
// first line is the sender, the second holds the fields of a message.
#include "AppConfig.h"
#include "fsd/pdu/PlaneInfoResponse.h"
#include "manager/AircraftTypeRules.h"
#include "manager/FlightPlanAnswer.h"
#include "manager/RemoteAircraftUpdates.h"
#include "model/RemoteAircraft.h"
#include "network/SwiftAircraftIcaoService.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace tarvo;
using namespace tarvo::manager;

namespace {

constexpr qsizetype longestCode = 4;

void require(bool condition)
{
    if (!condition)
        std::abort();
}

/// Type data of a few designators, and a memory of types that lives as long as the process.
struct World
{
    QTemporaryDir root;
    AppConfig config{root.path()};
    network::SwiftAircraftIcaoService icao{config};
    TypeNormalizer types{icao};

    World()
    {
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
        QFile file(root.filePath(QStringLiteral("resources/Doc8643.txt")));
        require(QDir(root.path()).mkpath(QStringLiteral("resources")) && file.open(QIODevice::WriteOnly));
        file.write("BOEING\t737-800\tB738\tL2J\tM\nDOUGLAS\tDC-3\tDC3\tL2P\tM\n");
        file.close();
        icao.ensureLoaded();
    }
};

void checkTexts(const QString &text, TypeNormalizer &types)
{
    require(typeFromFlightPlan(text).size() <= longestCode);
    const QString code = types.normalized(text);
    require(!code.isEmpty() && code.size() <= longestCode && types.normalized(text) == code);
    const QString airline = airlineOfCallsign(text);
    require(airline.isEmpty() || (airline.size() == 3 && text.startsWith(airline)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static World world;
    const QString text = QString::fromLatin1(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const QString from = text.section(QLatin1Char('\n'), 0, 0);
    const QStringList fields = text.section(QLatin1Char('\n'), 1).split(QLatin1Char(':'));
    for (const QString &field : fields)
        checkTexts(field, world.types);

    const FlightPlanAnswer answer = FlightPlanAnswer::read(from, fields);
    require(answer.callsign == answer.callsign.trimmed().toUpper() && answer.type.size() <= longestCode);

    model::RemoteAircraft aircraft;
    aircraft.callsign = from;
    const PlaneInfo info =
        PlaneInfo::of({from, {}, fields.value(0), fields.value(1), fields.value(2), fields.value(3)});
    apply(aircraft, info, world.types);
    const qsizetype longest = 2 * PlaneInfo::longestText; // upper-casing may double a text
    for (const QString &kept : {aircraft.airline, aircraft.livery, aircraft.typeCode, aircraft.remoteModelHint})
        require(kept.size() <= longest);
    return 0;
}
