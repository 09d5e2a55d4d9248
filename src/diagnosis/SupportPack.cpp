#include "diagnosis/SupportPack.h"

#include "Logging.h"
#include "diagnosis/Finding.h"
#include "diagnosis/MaskedText.h"
#include "diagnosis/StoredSettings.h"
#include "diagnosis/ZipWriter.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QSaveFile>
#include <QSet>

namespace tarvo::diagnosis {

namespace {

constexpr qint64 mostOfALog = 4'000'000; ///< bytes; some twenty logs are masked within seconds

QByteArray unreadable(const QString &reason)
{
    return "[could not be read: " + reason.toUtf8() + "]\n";
}

/// The archive, with names that tell nothing secret either.
class Packer
{
public:
    Packer(QIODevice &target, const PackContents &contents) : m_zip(target), m_contents(contents) {}

    void add(const QString &name, const QByteArray &bytes, const QDateTime &modified = QDateTime::currentDateTime())
    {
        const QString shown = maskedText(name, m_contents.mask);
        QString own = shown;
        for (int i = 2; m_names.contains(own); ++i)
            own = QStringLiteral("%1 (%2)").arg(shown).arg(i);
        m_names.insert(own);
        m_zip.add(own, bytes, modified);
    }
    void addLog(const QString &path)
    {
        QFile file(path);
        const bool isOpen = file.open(QIODevice::ReadOnly);
        QByteArray shown = isOpen ? maskedLog(file, m_contents.mask, mostOfALog) : QByteArray();
        if (file.error() != QFile::NoError)
            shown += unreadable(maskedText(file.errorString(), m_contents.mask));
        add(QDir(m_contents.dataRoot).relativeFilePath(path), shown, QFileInfo(path).lastModified());
    }
    /// Empty, or why it isn't whole.
    QString finish() { return m_zip.finish(); }

private:
    ZipWriter m_zip;
    const PackContents &m_contents;
    QSet<QString> m_names;
};

void addAll(Packer &packer, const PackContents &contents)
{
    const QDir root(contents.dataRoot);
    packer.add(QStringLiteral("report.txt"), contents.report.toUtf8());
    if (contents.settings.state == StoredSettings::State::Read)
        packer.add(QStringLiteral("config.ini"), maskedSettings(contents.settings.values, contents.mask));
    else if (contents.settings.state == StoredSettings::State::Unreadable)
        packer.add(QStringLiteral("config.ini"), unreadable(QStringLiteral("not open to this user")));
    if (const QString state = root.filePath(QStringLiteral("state.ini")); QFile::exists(state))
        packer.addLog(state);
    QDirIterator logs(root.filePath(QStringLiteral("logs")), QDir::Files | QDir::NoSymLinks,
                      QDirIterator::Subdirectories);
    while (logs.hasNext())
        packer.addLog(logs.next());
}

} // namespace

QString packSupport(const PackContents &contents, const QString &path)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return Texts::tr("无法写入 %1：%2").arg(QDir::toNativeSeparators(path), file.errorString());
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner); // before anything is in it
    Packer packer(file, contents);
    addAll(packer, contents);
    const QString failure = packer.finish();
    // QSaveFile overlooks a full disk where only closing brings the last bytes there.
    if (failure.isEmpty() && logging::flush(file) && file.commit())
        return {};
    const QString reason = file.error() == QFile::NoError ? failure : file.errorString();
    return Texts::tr("%1 没有写完：%2").arg(QDir::toNativeSeparators(path), reason);
}

} // namespace tarvo::diagnosis
