#include "AppConfig.h"
#include "network/IcaoFiles.h"
#include "network/SwiftAircraftIcaoService.h"
#include "support/LogCapture.h"
#include "support/SmallDisk.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QTest>

#include <memory>

using namespace tarvo;
using namespace tarvo::network;
using namespace tarvo::test;

/// The type database on a disk that is full, or can't be written.
class TypeDataDiskTest : public QObject
{
    Q_OBJECT

    QString database() const { return m_disk->filePath(QStringLiteral("cache/swift/aircrafticao.sqlite")); }
    QByteArray contents() const
    {
        QFile file(database());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
    }
    bool makeTable(int rows) const
    {
        QByteArray table;
        for (int i = 0; i < rows; ++i)
            table += "BOEING\tBoeing 737-800 of a long name\tX" + QByteArray::number(i) + "\tL2J\tM\n";
        return writeFile(m_disk->filePath(QStringLiteral("resources/Doc8643.txt")), table);
    }
    /// What a start knows of the type, and what it logs.
    std::pair<bool, QString> start(const char *designator) const
    {
        LogCapture log;
        AppConfig config(m_disk->path());
        SwiftAircraftIcaoService service(config);
        service.ensureLoaded();
        return {service.normalize(QString::fromLatin1(designator)).found, log.texts().join(u'\n')};
    }

    std::unique_ptr<SmallDisk> m_disk;

private slots:
    void init()
    {
        m_disk = std::make_unique<SmallDisk>();
        if (!m_disk->isThere())
            QSKIP("nothing may be mounted here");
    }

    void whatIsThereIsReadFromAFullDisk()
    {
        QVERIFY(writeIcaoDatabase(database(), {QStringLiteral("B738")}));
        const QByteArray before = contents();
        QVERIFY(m_disk->fill());
        const auto [found, said] = start("B738");
        QVERIFY2(found, qPrintable(said));
        QCOMPARE(contents(), before);
    }

    void anImportThatFindsNoRoomLeavesTheOldRows()
    {
        QVERIFY(writeIcaoDatabase(database(), {QStringLiteral("B738")}));
        QVERIFY(m_disk->fill());
        IcaoImport import;
        for (int i = 0; i < 5000; ++i)
            import.rows.append(icaoRow(i + 1, QStringLiteral("X%1").arg(i)));
        LogCapture log;
        {
            IcaoDatabase open(QStringLiteral("full"));
            QVERIFY(open.open(database(), IcaoDatabase::Mode::Writable));
            QVERIFY(!open.replaceAll(import));
            QVERIFY(!open.isDamaged());
        }
        QVERIFY2(log.contains(QStringLiteral("swift aircraft ICAO")), qPrintable(log.texts().join(u'\n')));
        const auto [found, said] = start("B738");
        QVERIFY2(found, qPrintable(said));
        QCOMPARE(runSql(database(), {QStringLiteral("SELECT designator FROM aircraft_icao")}),
                 QStringList{QStringLiteral("B738")});
    }

    void anImportThatFindsNoRoomIsMadeUpForAtTheNextStart()
    {
        QVERIFY(makeTable(500));
        QVERIFY(m_disk->fill());
        const auto [foundWhenFull, saidWhenFull] = start("X499");
        QVERIFY(!foundWhenFull);
        QVERIFY2(saidWhenFull.contains(QStringLiteral("continuing without ICAO normalization snapshot")),
                 qPrintable(saidWhenFull));
        QVERIFY(m_disk->clear());
        const auto [found, said] = start("X499");
        QVERIFY2(found, qPrintable(said));
    }

    void aHomeThatIsOnlyReadIsRead()
    {
        QVERIFY(writeIcaoDatabase(database(), {QStringLiteral("B738")}));
        QVERIFY(m_disk->lock());
        const auto [found, said] = start("B738");
        QVERIFY2(found, qPrintable(said));
    }
};

TARVO_TEST(TypeDataDiskTest)
#include "TypeDataDiskTest_linux.moc"
