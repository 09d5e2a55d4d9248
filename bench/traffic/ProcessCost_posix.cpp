#include "traffic/ProcessCost.h"

#include <QByteArray>
#include <QFile>
#include <QList>

#include <unistd.h>

namespace tarvo::bench {

namespace {

QByteArray contentOf(qint64 processId, const char *name)
{
    QFile file(QStringLiteral("/proc/%1/%2").arg(processId).arg(QLatin1StringView(name)));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

ProcessCost costOf(qint64 processId)
{
    // Behind the program's name, which may hold anything, field 3 of the file comes first; 14 and 15 are the times.
    const QByteArray stat = contentOf(processId, "stat");
    const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
    const double ticks = fields.value(11).toDouble() + fields.value(12).toDouble();
    const double pages = contentOf(processId, "statm").split(' ').value(1).toDouble();
    constexpr double mebibyte = 1024.0 * 1024.0;
    return {.cpuSeconds = ticks / static_cast<double>(sysconf(_SC_CLK_TCK)),
            .residentMiB = pages * static_cast<double>(sysconf(_SC_PAGESIZE)) / mebibyte};
}

} // namespace tarvo::bench
