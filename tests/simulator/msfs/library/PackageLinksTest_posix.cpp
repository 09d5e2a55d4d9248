#include "PackageTree.h"
#include "simulator/msfs/library/AircraftFiles.h"
#include "simulator/msfs/library/PackageWalk.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::simulator::msfs;
using namespace tarvo::test;

/// Links are files of their own kind on Windows, so this isn't for there.
class PackageLinksTest : public QObject
{
    Q_OBJECT

    static QStringList walkedWithLinks(const PackageTree &tree)
    {
        QStringList files;
        const std::atomic<bool> isStopped = false;
        const QString root = tree.path();
        walkAircraftConfigs(root, isStopped, [&](const QString &file) { files.append(file.sliced(root.size() + 1)); });
        return files;
    }

private slots:
    void linksToFoldersAreNotEntered()
    {
        const PackageTree tree;
        const QString file = QStringLiteral("p/SimObjects/a/aircraft.cfg");
        tree.write(file, "x");
        QVERIFY(QFile::link(tree.path(), tree.path(QStringLiteral("p/SimObjects/a/up"))));
        QVERIFY(QFile::link(tree.path(QStringLiteral("p/SimObjects")), tree.path(QStringLiteral("p/SimObjects/self"))));
        QVERIFY(QFile::link(tree.path(QStringLiteral("p")), tree.path(QStringLiteral("q"))));
        QCOMPARE(walkedWithLinks(tree), QStringList{file});
    }

    void brokenLinksAreNothing()
    {
        const PackageTree tree;
        tree.makeFolder(QStringLiteral("p/SimObjects"));
        QVERIFY(QFile::link(QStringLiteral("/gone"), tree.path(QStringLiteral("p/SimObjects/aircraft.cfg"))));
        QVERIFY(QFile::link(QStringLiteral("/gone"), tree.path(QStringLiteral("p/SimObjects/folder"))));
        QCOMPARE(walkedWithLinks(tree), QStringList());
    }

    void aBrokenOneHasNothingToRead()
    {
        const PackageTree tree;
        QVERIFY(QFile::link(tree.path(QStringLiteral("gone")), tree.path(QStringLiteral("broken"))));
        QCOMPARE(readAircraftFile(tree.path(QStringLiteral("broken"))), QByteArray());
    }
};

TARVO_TEST(PackageLinksTest)
#include "PackageLinksTest_posix.moc"
