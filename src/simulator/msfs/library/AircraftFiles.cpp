#include "simulator/msfs/library/AircraftFiles.h"

#include "simulator/msfs/library/ForeignText.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <utility>
#include <vector>

namespace tarvo::simulator::msfs {

namespace {

constexpr qint64 mostRead = 4 * 1024 * 1024; // bytes

struct MetadataKey
{
    AircraftKey key;
    QString MsfsAircraftMetadata::*value;
};

constexpr MetadataKey metadataKeys[] = {
    {AircraftKey::IcaoTypeDesignator, &MsfsAircraftMetadata::icaoTypeDesignator},
    {AircraftKey::IcaoManufacturer, &MsfsAircraftMetadata::icaoManufacturer},
    {AircraftKey::IcaoModel, &MsfsAircraftMetadata::icaoModel},
    {AircraftKey::IcaoEngineType, &MsfsAircraftMetadata::icaoEngineType},
    {AircraftKey::IcaoWakeCategory, &MsfsAircraftMetadata::icaoWakeCategory},
    {AircraftKey::Category, &MsfsAircraftMetadata::category},
    {AircraftKey::IcaoEngineCount, &MsfsAircraftMetadata::icaoEngineCount},
};

/// What the file itself says.
MsfsAircraftMetadata ownValues(const AircraftConfig &config)
{
    MsfsAircraftMetadata own;
    if (const AircraftSection *general = config.find(u"GENERAL")) {
        for (const MetadataKey &row : metadataKeys)
            own.*row.value = general->value(row.key);
    }
    return own;
}

/// `own`, and what `base` says where it says nothing.
MsfsAircraftMetadata completed(MsfsAircraftMetadata own, const MsfsAircraftMetadata &base)
{
    for (const MetadataKey &row : metadataKeys) {
        if ((own.*row.value).isEmpty())
            own.*row.value = base.*row.value;
    }
    return own;
}

struct Link
{
    QString path;
    MsfsAircraftMetadata own;
};

} // namespace

QByteArray readAircraftFile(const QString &path)
{
    QFile file(path);
    // A pipe or a device by that name would keep the scan for ever.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {};
    QByteArray bytes(std::min(file.size(), mostRead), Qt::Uninitialized);
    bytes.truncate(std::max<qint64>(file.read(bytes.data(), bytes.size()), 0));
    return bytes;
}

QString baseFileOf(const AircraftConfig &config, const QString &path)
{
    const AircraftSection *variation = config.find(u"VARIATION");
    QString base = variation ? variation->value(AircraftKey::BaseContainer) : QString();
    if (base.isEmpty())
        return {};
    base = QDir::cleanPath(QFileInfo(path).dir().filePath(base.replace(u'\\', u'/')));
    return QFileInfo(base).isFile() ? base : base + QStringLiteral("/aircraft.cfg");
}

AircraftConfig AircraftFiles::take(const QString &path)
{
    const auto known = m_ahead.find(path);
    if (known == m_ahead.end())
        return parseAircraftConfig(m_read(path));
    AircraftConfig config = std::move(*known);
    m_ahead.erase(known);
    return config;
}

MsfsAircraftMetadata AircraftFiles::metadataOf(const QString &path, const AircraftConfig &config)
{
    std::vector<Link> chain{{path, ownValues(config)}};
    QSet<QString> onTheWay{path};
    MsfsAircraftMetadata metadata;
    bool isCircle = false;
    for (QString base = baseFileOf(config, path); !base.isEmpty();) {
        if (const auto known = m_metadata.constFind(base); known != m_metadata.cend()) {
            metadata = *known;
            break;
        }
        isCircle = onTheWay.contains(base);
        if (isCircle)
            break;
        onTheWay.insert(base);
        const AircraftConfig &next = readAhead(base);
        chain.push_back({base, ownValues(next)});
        base = baseFileOf(next, base);
    }
    for (; !chain.empty(); chain.pop_back()) {
        metadata = completed(chain.back().own, metadata);
        // In a circle each file sees the others in an order of its own.
        if (!isCircle || chain.size() == 1)
            m_metadata.insert(chain.back().path, metadata);
    }
    return metadata;
}

const AircraftConfig &AircraftFiles::readAhead(const QString &path)
{
    const auto known = m_ahead.constFind(path);
    return known != m_ahead.cend() ? *known : *m_ahead.insert(path, parseAircraftConfig(m_read(path)));
}

} // namespace tarvo::simulator::msfs
