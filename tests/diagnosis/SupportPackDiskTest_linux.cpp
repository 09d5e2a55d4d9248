#include "common/SecretMask.h"
#include "diagnosis/StoredSettings.h"
#include "diagnosis/SupportPack.h"
#include "diagnosis/Unpacked.h"
#include "support/SmallDisk.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/fsuid.h>
#include <unistd.h>

using namespace tarvo;
using namespace tarvo::diagnosis;
using tarvo::test::SmallDisk;

namespace {

/// Root's files are closed to it for this while, as for everybody else.
class AsAnybody
{
public:
    AsAnybody()
    {
        if (m_user == 0)
            setfsuid(65534);
    }
    ~AsAnybody()
    {
        if (m_user == 0)
            setfsuid(m_user);
    }
    AsAnybody(const AsAnybody &) = delete;
    AsAnybody &operator=(const AsAnybody &) = delete;

private:
    uid_t m_user = geteuid();
};

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QString packOf(const QString &folder, const QString &path)
{
    const StoredSettings settings = readSettings(folder);
    const common::SecretMask mask({});
    return packSupport({.dataRoot = folder, .settings = settings, .report = u"report"_qs, .mask = mask}, path);
}

} // namespace

class SupportPackDiskTest : public QObject
{
    Q_OBJECT

private slots:
    void whatCantBeReadIsTold()
    {
        const QTemporaryDir folder;
        QVERIFY(QDir(folder.path()).mkdir(u"logs"_qs));
        for (const QString &name : {u"config.ini"_qs, u"logs/a.log"_qs}) {
            QVERIFY(writeFile(folder.filePath(name), "x"));
            QVERIFY(QFile::setPermissions(folder.filePath(name), QFile::Permissions()));
        }
        for (const char *name : {"", "logs"})
            QVERIFY(QFile::setPermissions(folder.filePath(QLatin1StringView(name)), QFile::Permissions(0x7777)));
        const QString path = folder.filePath(u"support.zip"_qs);
        {
            const AsAnybody nobody;
            QCOMPARE(packOf(folder.path(), path), QString());
        }
        const test::Entries entries = test::unpacked(path);
        QCOMPARE(entries.keys(), (QStringList{u"config.ini"_qs, u"logs/a.log"_qs, u"report.txt"_qs}));
        QVERIFY(entries.value(u"config.ini"_qs).startsWith("[could not be read: "));
        QVERIFY(entries.value(u"logs/a.log"_qs).startsWith("[could not be read: "));
    }

    void theArchiveThatWasThereStays_data()
    {
        QTest::addColumn<bool>("locked");
        QTest::newRow("full disk") << false;
        QTest::newRow("locked disk") << true;
    }
    void theArchiveThatWasThereStays()
    {
        QFETCH(const bool, locked);
        const SmallDisk disk;
        if (!disk.isThere())
            QSKIP("No disk of one's own without root or user namespaces.");
        const QString path = disk.filePath(u"support.zip"_qs);
        QVERIFY(writeFile(path, "before"));
        QVERIFY(locked ? disk.lock() : disk.fill());
        const QTemporaryDir folder;
        const QString failure = packOf(folder.path(), path);
        QVERIFY2(failure.contains(path) && !failure.endsWith(QChar(0xff1a)), qPrintable(failure));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("before"));
    }
};

TARVO_TEST(SupportPackDiskTest)
#include "SupportPackDiskTest_linux.moc"
