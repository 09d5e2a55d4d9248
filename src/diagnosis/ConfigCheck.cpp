#include "diagnosis/ConfigCheck.h"

#include "ConfigCipher.h"
#include "diagnosis/StoredSettings.h"
#include "simulator/xplane/SimulatorAddress.h"

#include <algorithm>
#include <cmath>
#include <variant>

namespace tarvo::diagnosis {

namespace {

using config::AnyKey;

QString nameOf(const AnyKey &anyKey)
{
    return std::visit([](const auto &key) { return QString::fromUtf8(key.key); }, anyKey);
}

/// What was encrypted by this build's secret comes back as text; anything else as noise.
bool decrypts(const QString &stored, const QByteArray &configSecret)
{
    const QString plain = cipher::decrypt(stored, configSecret);
    const auto isNoise = [](QChar c) {
        return c == QChar::ReplacementCharacter || c.category() == QChar::Other_Control;
    };
    return !plain.isEmpty() && std::none_of(plain.begin(), plain.end(), isNoise);
}

bool isUsable(const StringKey &key, const QString &value, const QByteArray &configSecret)
{
    if (key.isEncrypted)
        return value.isEmpty() || decrypts(value, configSecret);
    if (QLatin1StringView(key.key) == QLatin1StringView(config::xplaneNetworkAddress.key))
        return !simulator::xplane::datarefHost(value).isNull();
    return true;
}

bool isUsable(const BoolKey &, const QString &value, const QByteArray &)
{
    const QStringList words{QStringLiteral("true"), QStringLiteral("false"), QStringLiteral("1"), QStringLiteral("0")};
    return words.contains(value.trimmed(), Qt::CaseInsensitive);
}

bool isUsable(const IntKey &key, const QString &value, const QByteArray &)
{
    bool ok = false;
    const int number = value.toInt(&ok);
    const bool isPort = QLatin1StringView(key.key) == QLatin1StringView(config::xplaneUdpPort.key);
    return ok && (!isPort || simulator::xplane::datarefPort(number) == number);
}

bool isUsable(const RealKey &, const QString &value, const QByteArray &)
{
    bool ok = false;
    return std::isfinite(value.toDouble(&ok)) && ok;
}

bool isUsable(const PathListKey &, const QString &, const QByteArray &)
{
    return true;
}

bool isUsable(const AnyKey &anyKey, const QString &value, const QByteArray &configSecret)
{
    return std::visit([&](const auto &key) { return isUsable(key, value, configSecret); }, anyKey);
}

/// The names of the keys for which `holds` is true.
template <class Predicate>
QStringList namesWhere(Predicate holds)
{
    QStringList names;
    for (const AnyKey &key : config::storedKeys) {
        if (holds(nameOf(key), key))
            names << nameOf(key);
    }
    return names;
}

QString few(const QStringList &names)
{
    constexpr qsizetype most = 5;
    const QString listed = names.mid(0, most).join(QStringLiteral("、"));
    return names.size() <= most ? listed : Texts::tr("%1 等 %2 项").arg(listed).arg(names.size());
}

} // namespace

Finding judgeSettings(const StoredSettings &settings, const QByteArray &configSecret)
{
    const QString title = Texts::tr("设置文件 config.ini");
    if (settings.state == StoredSettings::State::Missing)
        return {Mark::Good, title, Texts::tr("还没有，客户端第一次启动时会写出")};
    if (settings.state == StoredSettings::State::Unreadable)
        return {Mark::Bad, title, Texts::tr("无法读取"), Texts::tr("检查文件的权限，或用管理员恢复对它的访问。")};
    const QStringList lost =
        namesWhere([&](const QString &name, const AnyKey &) { return !settings.values.contains(name); });
    if (!lost.isEmpty()) {
        const QString advice = settings.copyValues.isEmpty()
                                   ? Texts::tr("启动一次客户端，缺少的设置会恢复为默认值；然后在“设置”页检查。")
                                   : Texts::tr("启动一次客户端，缺少的设置会从备份 config.ini.bak 恢复。");
        return {Mark::Bad, title, Texts::tr("缺少设置：%1").arg(few(lost)), advice};
    }
    const QStringList unusable = namesWhere([&](const QString &name, const AnyKey &key) {
        return !std::holds_alternative<PathListKey>(key) &&
               !isUsable(key, settings.values.value(name).toString(), configSecret);
    });
    if (!unusable.isEmpty())
        return {Mark::Bad, title, Texts::tr("值无效：%1").arg(few(unusable)),
                Texts::tr("在“设置”页重新填写并保存；密码或令牌无效时重新登录。")};
    return {Mark::Good, title, Texts::tr("完好，共 %1 项设置").arg(config::storedKeys.size())};
}

QStringList foldersOf(const StoredSettings &settings)
{
    QStringList folders;
    for (const StringKey &key : {config::msfsPackagesPath2020, config::msfsPackagesPath2024,
                                 config::msfsCommunityPath2020, config::msfsCommunityPath2024})
        folders << settings.text(key).trimmed();
    for (const PathListKey &key :
         {config::xplaneCsl, config::msfsCustomMappingPaths2020, config::msfsCustomMappingPaths2024})
        folders << settings.values.value(QString::fromUtf8(key.key)).toStringList();
    folders.removeAll(QString());
    folders.removeDuplicates();
    return folders;
}

Findings judgeFolders(const QStringList &folders, const std::optional<QStringList> &missing)
{
    if (folders.isEmpty())
        return {};
    const QString title = Texts::tr("设置中的文件夹");
    const QString advice = Texts::tr("在“设置”页改正路径，或接上它所在的磁盘。");
    if (!missing)
        return {{Mark::Bad, title, Texts::tr("磁盘没有及时应答"), advice}};
    if (!missing->isEmpty())
        return {{Mark::Bad, title, Texts::tr("不存在：%1").arg(few(*missing)), advice}};
    return {{Mark::Good, title, Texts::tr("%1 个都在").arg(folders.size())}};
}

} // namespace tarvo::diagnosis
