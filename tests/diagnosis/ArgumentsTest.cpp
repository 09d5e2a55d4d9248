#include "diagnosis/Arguments.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::diagnosis;
using tarvo::model::SimulatorMode;

class ArgumentsTest : public QObject
{
    Q_OBJECT

private slots:
    void reads_data()
    {
        QTest::addColumn<QStringList>("words");
        QTest::addColumn<QString>("packFile");
        QTest::addColumn<int>("simulator"); // -1: not named
        QTest::newRow("nothing") << QStringList() << QString() << -1;
        QTest::newRow("pack") << QStringList{u"--pack"_qs, u"a.zip"_qs} << u"a.zip"_qs << -1;
        QTest::newRow("X-Plane") << QStringList{u"--simulator=XPlane"_qs} << QString() << int(SimulatorMode::XPlane);
        QTest::newRow("MSFS") << QStringList{u"--simulator=msfs"_qs} << QString() << int(SimulatorMode::Msfs);
        QTest::newRow("none") << QStringList{u"--simulator=none"_qs} << QString() << int(SimulatorMode::None);
    }
    void reads()
    {
        QFETCH(const QStringList, words);
        QFETCH(const int, simulator);
        QString error;
        const auto arguments = readArguments(QStringList{u"tarvo-support"_qs} + words, &error);
        QVERIFY2(arguments, qPrintable(error));
        QTEST(arguments->packFile, "packFile");
        QCOMPARE(arguments->simulator ? int(*arguments->simulator) : -1, simulator);
        QCOMPARE(arguments->information, QString());
    }

    void refuses_data()
    {
        QTest::addColumn<QStringList>("words");
        QTest::newRow("unknown option") << QStringList{u"--mend"_qs};
        QTest::newRow("a word") << QStringList{u"a.zip"_qs};
        QTest::newRow("no file") << QStringList{u"--pack"_qs};
        QTest::newRow("an empty file") << QStringList{u"--pack="_qs};
        QTest::newRow("unknown simulator") << QStringList{u"--simulator=other"_qs};
    }
    void refuses()
    {
        QFETCH(const QStringList, words);
        QString error;
        QVERIFY(!readArguments(QStringList{u"tarvo-support"_qs} + words, &error));
        QVERIFY(!error.isEmpty());
    }

    void informs()
    {
        QString error;
        QVERIFY(readArguments({u"tarvo-support"_qs, u"--help"_qs}, &error)->information.contains(u"--pack"_qs));
        QVERIFY(
            readArguments({u"tarvo-support"_qs, u"--version"_qs}, &error)->information.startsWith(u"tarvo-support"_qs));
    }
};

TARVO_TEST(ArgumentsTest)
#include "ArgumentsTest.moc"
