#include "soak/Footprint.h"

#include "manager/RemoteAircraftTable.h"
#include "ui/viewmodel/MessageStore.h"
#include "ui/viewmodel/MessagesPageViewModel.h"
#include "ui/viewmodel/PrivateSessions.h"

#include <QDir>
#include <QStringList>

#include <limits>

namespace tarvo::test {

namespace {

constexpr qsizetype anyNumber = std::numeric_limits<qsizetype>::max();
constexpr qsizetype mostStations = 2000;
constexpr qsizetype mostRows = 2000;

struct Count
{
    const char *name;
    qsizetype Footprint::*count;
    qsizetype bound;
};

constexpr Count counts[] = {
    {"descriptors", &Footprint::descriptors, anyNumber},
    {"threads", &Footprint::threads, anyNumber},
    {"objects", &Footprint::objects, anyNumber},
    {"aircraft", &Footprint::aircraft, manager::RemoteAircraftTable::maximumSize},
    {"records of aircraft", &Footprint::records, manager::RemoteAircraftTable::maximumSize},
    {"controllers", &Footprint::controllers, mostStations},
    {"stations nearby", &Footprint::nearby, mostStations},
    {"private sessions", &Footprint::sessions, ui::PrivateSessions::maximumSessions},
    {"messages", &Footprint::messages, ui::MessageStore::maximumMessages},
    {"recent events", &Footprint::events, mostRows},
    {"lines of the server log", &Footprint::logLines, mostRows},
};

qsizetype entriesOf(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

} // namespace

Footprint Footprint::ofProcess()
{
    Footprint process;
    process.descriptors = entriesOf(QStringLiteral("/proc/self/fd"));
    process.threads = entriesOf(QStringLiteral("/proc/self/task"));
    return process;
}

Footprint Footprint::bounds()
{
    Footprint bounds;
    for (const Count &one : counts)
        bounds.*one.count = one.bound;
    return bounds;
}

QString Footprint::excessOver(const Footprint &other) const
{
    QStringList excess;
    for (const auto &[name, count, bound] : counts) {
        if (this->*count > other.*count)
            excess << QStringLiteral("%1 %2 instead of %3")
                          .arg(this->*count)
                          .arg(QLatin1StringView(name))
                          .arg(other.*count);
    }
    return excess.join(u", ");
}

} // namespace tarvo::test
