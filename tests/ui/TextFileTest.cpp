#include "ui/TextFile.h"

#include "support/TestRegistry.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using tarvo::ui::writeTextFile;

class TextFileTest : public QObject
{
    Q_OBJECT

private slots:
    void chineseIsWrittenAsUtf8()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"消息.txt"_qs);
        QCOMPARE(writeTextFile(path, u"一个长得多的旧文本\n"_qs), QString());
        QCOMPARE(writeTextFile(path, u"收到\n"_qs), QString());
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
        QCOMPARE(file.readAll(), QByteArray("\xE6\x94\xB6\xE5\x88\xB0\n"));
    }

    void aFailureSaysWhy_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("no such folder") << u"nowhere/messages.txt"_qs;
        QTest::newRow("a folder") << u"."_qs;
        QTest::newRow("no name") << QString();
    }
    void aFailureSaysWhy()
    {
        QFETCH(QString, path);
        const QTemporaryDir folder;
        QVERIFY(!writeTextFile(path.isEmpty() ? path : folder.filePath(path), u"text"_qs).isEmpty());
    }
};

TARVO_TEST(TextFileTest)
#include "TextFileTest.moc"
