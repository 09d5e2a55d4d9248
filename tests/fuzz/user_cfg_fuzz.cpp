// Any bytes as a UserCfg.opt: every path is clean, and ASCII is read like a plain reader of lines reads it.
#include "simulator/msfs/library/InstallDiscovery.h"

#include <QDir>

#include <algorithm>
#include <cstdlib>

using namespace tarvo::simulator::msfs;

namespace {

QStringList plainPaths(const QString &text)
{
    QStringList paths;
    for (const QString &whole : text.split(u'\n')) {
        const QString line = whole.trimmed();
        const qsizetype blank = line.indexOf(u' ');
        if (!line.startsWith(QStringLiteral("InstalledPackagesPath")) || blank < 0)
            continue;
        QString value = line.sliced(blank).trimmed();
        if (value.size() > 1 && value.startsWith(u'"') && value.endsWith(u'"'))
            value = value.sliced(1, value.size() - 2).trimmed();
        if (const QString path = QDir::cleanPath(value.replace(u'\\', u'/')); !path.isEmpty())
            paths.append(path);
    }
    return paths;
}

bool isPlain(const QByteArray &bytes)
{
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char byte) { return byte == '\n' || (byte >= ' ' && byte <= '~'); });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const QStringList paths = packagesPathsIn(bytes);
    for (const QString &path : paths) {
        if (path.isEmpty() || path.contains(u'\\') || path != QDir::cleanPath(path))
            std::abort();
    }
    if (isPlain(bytes) && paths != plainPaths(QString::fromLatin1(bytes)))
        std::abort();
    return 0;
}
