#include "simulator/msfs/library/PackageWalk.h"
#include "PackageTree.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::simulator::msfs;
using namespace tarvo::test;

namespace {

/// What the walk tells, without the root.
QStringList walked(const PackageTree &tree, const QString &root = {})
{
    QStringList files;
    const std::atomic<bool> isStopped = false;
    const QString path = tree.path(root);
    walkAircraftConfigs(path, isStopped, [&](const QString &file) { files.append(file.sliced(path.size() + 1)); });
    return files;
}

} // namespace

class PackageWalkTest : public QObject
{
    Q_OBJECT

private slots:
    void aFileIsTold_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("told");
        QTest::newRow("an aircraft") << QStringLiteral("p/SimObjects/Airplanes/a/aircraft.cfg") << true;
        QTest::newRow("a helicopter") << QStringLiteral("p/SimObjects/Rotorcraft/a/aircraft.cfg") << true;
        QTest::newRow("right below") << QStringLiteral("SimObjects/aircraft.cfg") << true;
        QTest::newRow("in upper case") << QStringLiteral("p/SimObjects/Airplanes/a/AIRCRAFT.CFG") << true;
        QTest::newRow("in the docs") << QStringLiteral("p/docs/aircraft.cfg") << false;
        QTest::newRow("the folder in lower case") << QStringLiteral("p/simobjects/a/aircraft.cfg") << false;
        QTest::newRow("a folder that only begins so") << QStringLiteral("p/SimObjectsOld/a/aircraft.cfg") << false;
        QTest::newRow("another file") << QStringLiteral("p/SimObjects/a/engines.cfg") << false;
        QTest::newRow("a copy") << QStringLiteral("p/SimObjects/a/aircraft.cfg.bak") << false;
        QTest::newRow("a hidden folder") << QStringLiteral("p/.git/SimObjects/a/aircraft.cfg") << false;
        QTest::newRow("32 folders deep") << QStringLiteral("SimObjects/") + QStringLiteral("d/").repeated(31) +
                                                QStringLiteral("aircraft.cfg")
                                         << true;
        QTest::newRow("deeper than any package")
            << QStringLiteral("SimObjects/") + QStringLiteral("d/").repeated(32) + QStringLiteral("aircraft.cfg")
            << false;
    }
    void aFileIsTold()
    {
        QFETCH(QString, file);
        QFETCH(bool, told);
        const PackageTree tree;
        tree.write(file, "x");
        QCOMPARE(walked(tree), told ? QStringList{file} : QStringList());
    }

    void theRootMayLieBelow()
    {
        const PackageTree tree;
        tree.write(QStringLiteral("SimObjects/Airplanes/a/aircraft.cfg"), "x");
        QCOMPARE(walked(tree, QStringLiteral("SimObjects/Airplanes")), QStringList{QStringLiteral("a/aircraft.cfg")});
    }

    void foldersAreSorted()
    {
        const PackageTree tree;
        const QStringList sorted{
            QStringLiteral("A/SimObjects/a/aircraft.cfg"), QStringLiteral("A/SimObjects/a/b/aircraft.cfg"),
            QStringLiteral("A/SimObjects/c/aircraft.cfg"), QStringLiteral("Z/SimObjects/a/aircraft.cfg"),
            QStringLiteral("b/SimObjects/a/aircraft.cfg")};
        for (const int index : {3, 1, 4, 0, 2})
            tree.write(sorted.at(index), "x");
        QCOMPARE(walked(tree), sorted);
    }

    void aFolderOfThatNameIsWalked()
    {
        const PackageTree tree;
        const QString file = QStringLiteral("p/SimObjects/aircraft.cfg/aircraft.cfg");
        tree.write(file, "x");
        QCOMPARE(walked(tree), QStringList{file});
    }

    void noFolderAtAll() { QCOMPARE(walked(PackageTree(), QStringLiteral("gone")), QStringList()); }

    void itStopsAtOnce()
    {
        const PackageTree tree;
        for (const char *name : {"a", "b", "c"})
            tree.write(QStringLiteral("SimObjects/%1/aircraft.cfg").arg(QLatin1String(name)), "x");
        std::atomic<bool> isStopped = false;
        int files = 0;
        walkAircraftConfigs(tree.path(), isStopped, [&](const QString &) {
            ++files;
            isStopped = true;
        });
        QCOMPARE(files, 1);
    }
};

TARVO_TEST(PackageWalkTest)
#include "PackageWalkTest.moc"
