// Any bytes as an aircraft.cfg. What is ASCII is read like a plain reader of lines reads it.
#include "simulator/msfs/library/AircraftConfig.h"
#include "simulator/msfs/library/AircraftFiles.h"
#include "simulator/msfs/library/ModelTables.h"

#include <QMap>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

using namespace tarvo::simulator::msfs;

namespace {

using Titles = QMap<QString, QString>;

QString withoutRemark(const QString &line)
{
    bool quoted = false;
    for (qsizetype at = 0; at < line.size(); ++at) {
        quoted = quoted != (line.at(at) == u'"');
        if (line.at(at) == u';' && !quoted)
            return line.first(at);
    }
    return line;
}

/// The titles of the variants, told plainly and slowly.
Titles plainTitles(const QString &text)
{
    Titles titles;
    QString section;
    for (const QString &whole : text.split(u'\n')) {
        const QString line = withoutRemark(whole).trimmed();
        if (line.startsWith(u'[') && line.contains(u']')) {
            section = line.sliced(1, line.lastIndexOf(u']') - 1).trimmed().toUpper();
            continue;
        }
        const qsizetype sign = line.indexOf(u'=');
        if (!section.startsWith(QStringLiteral("FLTSIM.")) || sign < 0 ||
            line.first(sign).trimmed().toLower() != QStringLiteral("title"))
            continue;
        QString value = line.sliced(sign + 1).trimmed();
        if (value.size() > 1 && value.startsWith(u'"') && value.endsWith(u'"'))
            value = value.sliced(1, value.size() - 2);
        titles[section] = value.simplified();
    }
    return titles;
}

Titles titlesOf(const AircraftConfig &config)
{
    Titles titles;
    for (const AircraftSection &section : config.sections) {
        const QString title = section.value(AircraftKey::Title);
        if (section.isVariant() && !title.isNull())
            titles[section.name()] = title;
    }
    return titles;
}

/// White space that QString knows and bytes don't, and what would be taken for another encoding, are left aside.
bool isPlain(const QByteArray &bytes)
{
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char byte) { return byte == '\n' || (byte >= ' ' && byte <= '~'); });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const AircraftConfig config = parseAircraftConfig(bytes);
    if (isPlain(bytes) && titlesOf(config) != plainTitles(QString::fromLatin1(bytes))) {
        std::fputs("other titles than the plain reader finds\n", stderr);
        std::abort();
    }
    // The same bytes for the first files that are asked for: a base below itself would never end.
    int left = 3;
    AircraftFiles files([&](const QString &) { return left-- > 0 ? bytes : QByteArray(); });
    const QString path = QStringLiteral("/nowhere/p/SimObjects/a/aircraft.cfg");
    MsfsAircraftEntry entry;
    entry.metadata = files.metadataOf(path, files.take(path));
    for (const AircraftSection &section : config.sections) {
        entry.title = section.value(AircraftKey::Title);
        const SearchableModel model(entry);
        if (model.title.key() != normalizeKey(entry.title))
            std::abort();
    }
    return 0;
}
