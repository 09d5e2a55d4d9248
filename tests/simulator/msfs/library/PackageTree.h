#pragma once

#include "simulator/msfs/library/LibraryScan.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

namespace tarvo::test {

/// A folder with packages in it, as a simulator has them.
class PackageTree
{
public:
    QString path(const QString &inside = {}) const { return inside.isEmpty() ? root() : root() + u'/' + inside; }

    QString write(const QString &inside, const QByteArray &bytes) const
    {
        QDir().mkpath(QFileInfo(path(inside)).path());
        QFile file(path(inside));
        const bool written = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
        return written ? file.fileName() : QString();
    }

    /// An aircraft.cfg with one variant of that title.
    QString addAircraft(const QString &folder, const QString &title) const
    {
        return write(folder + QStringLiteral("/aircraft.cfg"), "[FLTSIM.0]\ntitle=" + title.toUtf8());
    }

    void makeFolder(const QString &inside) const { QDir().mkpath(path(inside)); }

private:
    QString root() const { return QFileInfo(m_folder.path()).canonicalFilePath(); }

    QTemporaryDir m_folder;
};

/// The models of a simulator in their order.
inline QList<simulator::msfs::MsfsAircraftEntry> entriesOf(const simulator::msfs::ModelTables &tables,
                                                           simulator::msfs::MsfsRuntimeProfile profile)
{
    QList<simulator::msfs::MsfsAircraftEntry> entries;
    tables.forEachCandidate(profile,
                            [&entries](const simulator::msfs::SearchableModel &model,
                                       const simulator::msfs::ModelOutline &) { entries.append(model.entry); });
    return entries;
}

inline QStringList titlesOf(const simulator::msfs::ModelTables &tables, simulator::msfs::MsfsRuntimeProfile profile)
{
    QStringList titles;
    for (const simulator::msfs::MsfsAircraftEntry &entry : entriesOf(tables, profile))
        titles.append(entry.title);
    return titles;
}

} // namespace tarvo::test
