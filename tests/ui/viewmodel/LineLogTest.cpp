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
        QCOMPARE(log.append(evening, u"晚上"_qs), u"[21:04:07] 晚上"_qs);
        QCOMPARE(log.text(), u"[21:04:07] 晚上"_qs);
        QVERIFY(!log.isEmpty());
    }

    void joinsLinesByALineFeed()
    {
        LineLog log;
        log.append(noon(), u"a"_qs);
        log.append(noon(), QString());
        log.append(noon(), u"c"_qs);
        QCOMPARE(log.text(), u"[12:00:00] a\n[12:00:00] \n[12:00:00] c"_qs);
    }

    void aTextIsOneLine_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("line");
        QTest::newRow("line feed") << u"a\nb"_qs << u"[12:00:00] a b"_qs;
        QTest::newRow("carriage return and line feed") << u"a\r\nb"_qs << u"[12:00:00] a  b"_qs;
        QTest::newRow("line separator") << QStringLiteral(u"a\u2028b") << u"[12:00:00] a b"_qs;
        QTest::newRow("paragraph separator") << QStringLiteral(u"a\u2029b") << u"[12:00:00] a b"_qs;
        QTest::newRow("markup stays") << u"<b>a</b>"_qs << u"[12:00:00] <b>a</b>"_qs;
        QTest::newRow("the longest") << QString(LineLog::maximumLineLength, u'x')
                                     << u"[12:00:00] "_qs + QString(LineLog::maximumLineLength, u'x');
        QTest::newRow("one too long") << QString(LineLog::maximumLineLength + 1, u'x')
                                      << u"[12:00:00] "_qs + QString(LineLog::maximumLineLength, u'x');
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
        QCOMPARE(lines.constFirst(), u"[12:00:00] 1"_qs);
        QCOMPARE(lines.constLast(), u"[12:00:00] %1"_qs.arg(LineLog::maximumLines));
    }

    void clearForgetsAll()
    {
        LineLog log;
        log.append(noon(), u"a"_qs);
        QVERIFY(!log.text().isEmpty());
        log.clear();
        QVERIFY(log.isEmpty());
        QCOMPARE(log.text(), QString());
    }

private:
    static qint64 noon() { return QDateTime(QDate(2024, 3, 9), QTime(12, 0)).toMSecsSinceEpoch(); }
};

TARVO_TEST(LineLogTest)
#include "LineLogTest.moc"
