#include "ui/viewmodel/LineLog.h"

#include "support/TestRegistry.h"

#include <QDateTime>
#include <QObject>
#include <QTest>

using tarvo::ui::LineLog;

class LineLogTest : public QObject
{
    Q_OBJECT

private slots:
    void startsEmpty()
    {
        const LineLog log;
        QVERIFY(log.isEmpty());
        QCOMPARE(log.text(), QString());
    }

    void putsTheLocalTimeInFront()
    {
        LineLog log;
        const qint64 evening = QDateTime(QDate(2024, 3, 9), QTime(21, 4, 7)).toMSecsSinceEpoch();
        QCOMPARE(log.append(evening, QStringLiteral("晚上")), QStringLiteral("[21:04:07] 晚上"));
        QCOMPARE(log.text(), QStringLiteral("[21:04:07] 晚上"));
        QVERIFY(!log.isEmpty());
    }

    void joinsLinesByALineFeed()
    {
        LineLog log;
        log.append(noon(), QStringLiteral("a"));
        log.append(noon(), QString());
        log.append(noon(), QStringLiteral("c"));
        QCOMPARE(log.text(), QStringLiteral("[12:00:00] a\n[12:00:00] \n[12:00:00] c"));
    }

    void aTextIsOneLine_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("line");
        QTest::newRow("line feed") << QStringLiteral("a\nb") << QStringLiteral("[12:00:00] a b");
        QTest::newRow("carriage return and line feed") << QStringLiteral("a\r\nb") << QStringLiteral("[12:00:00] a  b");
        QTest::newRow("line separator") << QStringLiteral(u"a\u2028b") << QStringLiteral("[12:00:00] a b");
        QTest::newRow("paragraph separator") << QStringLiteral(u"a\u2029b") << QStringLiteral("[12:00:00] a b");
        QTest::newRow("markup stays") << QStringLiteral("<b>a</b>") << QStringLiteral("[12:00:00] <b>a</b>");
        QTest::newRow("the longest") << QString(LineLog::maximumLineLength, u'x')
                                     << QStringLiteral("[12:00:00] ") + QString(LineLog::maximumLineLength, u'x');
        QTest::newRow("one too long") << QString(LineLog::maximumLineLength + 1, u'x')
                                      << QStringLiteral("[12:00:00] ") + QString(LineLog::maximumLineLength, u'x');
    }

    void aTextIsOneLine()
    {
        QFETCH(QString, text);
        QFETCH(QString, line);
        LineLog log;
        QCOMPARE(log.append(noon(), text), line);
        QCOMPARE(log.text(), line);
    }

    void keepsTheNewestLines()
    {
        LineLog log;
        for (int i = 0; i <= LineLog::maximumLines; ++i)
            log.append(noon(), QString::number(i));
        const QStringList lines = log.text().split(u'\n');
        QCOMPARE(lines.size(), LineLog::maximumLines);
        QCOMPARE(lines.constFirst(), QStringLiteral("[12:00:00] 1"));
        QCOMPARE(lines.constLast(), QStringLiteral("[12:00:00] %1").arg(LineLog::maximumLines));
    }

    void clearForgetsAll()
    {
        LineLog log;
        log.append(noon(), QStringLiteral("a"));
        log.clear();
        QVERIFY(log.isEmpty());
        QCOMPARE(log.text(), QString());
    }

private:
    static qint64 noon() { return QDateTime(QDate(2024, 3, 9), QTime(12, 0)).toMSecsSinceEpoch(); }
};

TARVO_TEST(LineLogTest)
#include "LineLogTest.moc"
