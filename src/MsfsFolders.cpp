#include "MsfsFolders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>

namespace tarvo {

namespace {

constexpr qint64 longestLine = 4096; // in bytes; a line of the simulator's is far shorter

struct Candidates
{
    QStringList files2020;
    QStringList files2024;
};

QString withoutQuotes(const QString &text)
{
    const bool quoted = text.size() >= 2 && text.startsWith(u'"') && text.endsWith(u'"');
    return quoted ? text.sliced(1, text.size() - 2) : text;
}

/// The folder named by the first "InstalledPackagesPath" line; empty when there is no such line or no such folder.
QString packagesPathIn(const QString &fileName)
{
    static const QRegularExpression pattern(QStringLiteral("^\\s*InstalledPackagesPath\\s+(.+?)\\s*$"));
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    while (!file.atEnd()) {
        const QByteArray bytes = file.readLine(longestLine);
        if (bytes.isEmpty()) // a read error: no line comes any more
            break;
        const QRegularExpressionMatch match = pattern.match(QString::fromUtf8(bytes).trimmed());
        if (!match.hasMatch())
            continue;
        QString path = withoutQuotes(match.captured(1));
        if (path.isEmpty() || !QFileInfo(path).isDir())
            return {};
        return path;
    }
    return {};
}

QString firstPackagesPath(const QStringList &files)
{
    for (const QString &file : files) {
        QString path = packagesPathIn(file);
        if (!path.isEmpty())
            return path;
    }
    return {};
}

bool is2024(const QString &upperName)
{
    return upperName.contains(QLatin1String("LIMITLESS")) || upperName.contains(QLatin1String("2024"));
}

/// Store editions under any publisher's name.
void addScannedPackages(const QString &localAppData, Candidates &candidates)
{
    const QDir packages(localAppData + QStringLiteral("/Packages"));
    const QStringList names = packages.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString &name : names) {
        const QString upper = name.toUpper();
        if (!upper.contains(QLatin1String("FLIGHTSIMULATOR")) && !upper.contains(QLatin1String("LIMITLESS")))
            continue;
        QStringList &files = is2024(upper) ? candidates.files2024 : candidates.files2020;
        files += packages.filePath(name + QStringLiteral("/LocalCache/UserCfg.opt"));
    }
}

Candidates findCandidates(const QString &localAppData, const QString &appData)
{
    Candidates candidates;
    if (!localAppData.isEmpty()) {
        const QString file = QStringLiteral("%1/Packages/%2/LocalCache/UserCfg.opt");
        candidates.files2020 += file.arg(localAppData, QStringLiteral("Microsoft.FlightSimulator_8wekyb3d8bbwe"));
        candidates.files2024 += file.arg(localAppData, QStringLiteral("Microsoft.Limitless_8wekyb3d8bbwe"));
    }
    if (!appData.isEmpty()) {
        candidates.files2020 += appData + QStringLiteral("/Microsoft Flight Simulator/UserCfg.opt");
        candidates.files2024 += appData + QStringLiteral("/Microsoft Flight Simulator 2024/UserCfg.opt");
    }
    if (!localAppData.isEmpty())
        addScannedPackages(localAppData, candidates);
    return candidates;
}

QString existingFolder(const QString &packages, const QString &name)
{
    if (packages.isEmpty())
        return {};
    const QString path = QDir::cleanPath(packages + u'/' + name);
    return QFileInfo(path).isDir() ? path : QString();
}

} // namespace

MsfsFolders detectMsfsFolders(const QString &localAppData, const QString &appData)
{
    const Candidates candidates = findCandidates(localAppData, appData);
    MsfsFolders folders;
    folders.packages2020 = firstPackagesPath(candidates.files2020);
    folders.packages2024 = firstPackagesPath(candidates.files2024);
    folders.community2020 = existingFolder(folders.packages2020, QStringLiteral("Community"));
    folders.community2024 = existingFolder(folders.packages2024, QStringLiteral("Community"));
    if (folders.community2024.isEmpty())
        folders.community2024 = existingFolder(folders.packages2024, QStringLiteral("Community2024"));
    return folders;
}

} // namespace tarvo
