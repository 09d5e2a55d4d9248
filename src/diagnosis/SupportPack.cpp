#include "diagnosis/SupportPack.h"

#include "diagnosis/Finding.h"
#include "diagnosis/MaskedText.h"
#include "diagnosis/StoredSettings.h"
#include "diagnosis/ZipWriter.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QSaveFile>

namespace tarvo::diagnosis {

namespace {

constexpr qint64 mostOfALog = 4'000'000; ///< bytes; some twenty logs are masked within seconds

void addLog(ZipWriter &zip, const QDir &root, const QString &path, const QStringList &secrets)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QString name = root.relativeFilePath(path);
    zip.add(name, maskedLog(file, secrets, mostOfALog), QFileInfo(file).lastModified());
}

void addAll(ZipWriter &zip, const PackContents &contents)
{
    const QDir root(contents.dataRoot);
    const QDateTime now = QDateTime::currentDateTime();
    zip.add(QStringLiteral("report.txt"), contents.report.toUtf8(), now);
    if (contents.settings.state == StoredSettings::State::Read)
        zip.add(QStringLiteral("config.ini"), maskedSettings(contents.settings.values, contents.secrets), now);
    addLog(zip, root, root.filePath(QStringLiteral("state.ini")), contents.secrets);
    QDirIterator logs(root.filePath(QStringLiteral("logs")), QDir::Files | QDir::NoSymLinks,
                      QDirIterator::Subdirectories);
    while (logs.hasNext())
        addLog(zip, root, logs.next(), contents.secrets);
}

} // namespace

QString packSupport(const PackContents &contents, const QString &path)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return Texts::tr("无法写入 %1：%2").arg(QDir::toNativeSeparators(path), file.errorString());
    ZipWriter zip(file);
    addAll(zip, contents);
    if (zip.finish() && file.commit())
        return {};
    return Texts::tr("%1 没有写完：%2").arg(QDir::toNativeSeparators(path), file.errorString());
}

} // namespace tarvo::diagnosis
