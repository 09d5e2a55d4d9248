#include "manager/SessionLog.h"
#include "support/Columns.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace tarvo::manager;
using tarvo::test::columns;
using tarvo::test::LogCapture;
using tarvo::test::ManualClock;

namespace {

constexpr qint64 noonUtc = 1'700'049'600'123; // 2023-11-15 12:00:00.123 UTC

QString contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void makeFile(const QString &path, qint64 time)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("x");
    file.flush();
    QVERIFY(file.setFileTime(QDateTime::fromMSecsSinceEpoch(time), QFileDevice::FileModificationTime));
}

} // namespace

class SessionLogTest : public QObject
{
    Q_OBJECT

private slots:
    void masks_data()
    {
        columns<QString, QString, QString>("line", "secret", "expected");
        QTest::newRow("pilot") << u"#APAB1:SERVER:1001:pass:1:9:5:Li ZBAA"_qs << u"pass"_qs
                               << u"#APAB1:SERVER:1001:******:1:9:5:Li ZBAA"_qs;
        QTest::newRow("observer") << u"#AAAB1:SERVER:Li:1001:pass:1:9"_qs << u"pass"_qs
                                  << u"#AAAB1:SERVER:Li:1001:******:1:9"_qs;
        QTest::newRow("pilot, by place") << u"#APAB1:SERVER:1001:other:1:9:5:Li"_qs << u""_qs
                                         << u"#APAB1:SERVER:1001:******:1:9:5:Li"_qs;
        QTest::newRow("observer, by place")
            << u"#AAAB1:SERVER:Li:1001:other:1:9"_qs << u""_qs << u"#AAAB1:SERVER:Li:1001:******:1:9"_qs;
        QTest::newRow("empty password") << u"#APAB1:SERVER:1001::1:9:5:Li"_qs << u""_qs
                                        << u"#APAB1:SERVER:1001:******:1:9:5:Li"_qs;
        QTest::newRow("moved by a colon in the name")
            << u"#AAAB1:SERVER:L:i:1001:pass:1:9"_qs << u"pass"_qs << u"#AAAB1:SERVER:L:i:******:******:1:9"_qs;
        QTest::newRow("with a colon") << u"#APAB1:SERVER:1001:pa:ss:1:9:5:Li"_qs << u"pa:ss"_qs
                                      << u"#APAB1:SERVER:1001:******:1:9:5:Li"_qs;
        QTest::newRow("elsewhere in the line")
            << u"#APAB1:SERVER:pass:pass:1:9:5:pass"_qs << u"pass"_qs << u"#APAB1:SERVER:******:******:1:9:5:******"_qs;
        QTest::newRow("the identifier stays")
            << u"#APAPB:SERVER:1001:AP:1:9:5:Li"_qs << u"AP"_qs << u"#AP******B:SERVER:1001:******:1:9:5:Li"_qs;
        QTest::newRow("as the wire changes it")
            << u"#APAB1:SERVER:1001:p\uFFFD:x:1:9:5:Li"_qs << u"pé:x"_qs << u"#APAB1:SERVER:1001:******:1:9:5:Li"_qs;
        QTest::newRow("sent on one line") << u"#APAB1:SERVER:1001:pa  ss:x:1:9:5:Li"_qs << u"pa\r\nss:x"_qs
                                          << u"#APAB1:SERVER:1001:******:1:9:5:Li"_qs;
        QTest::newRow("cut behind the password")
            << u"#APAB1:SERVER:1001:other"_qs << u""_qs << u"#APAB1:SERVER:1001:******"_qs;
        QTest::newRow("too short") << u"#APAB1:SERVER"_qs << u"pass"_qs << u"#APAB1:SERVER"_qs;
        QTest::newRow("other line with the same text") << u"#TMAB1:AB2:pass"_qs << u"pass"_qs << u"#TMAB1:AB2:pass"_qs;
        QTest::newRow("other case") << u"#apAB1:SERVER:1001:pass:1"_qs << u"pass"_qs << u"#apAB1:SERVER:1001:pass:1"_qs;
    }

    void masks()
    {
        QFETCH(QString, line);
        QFETCH(QString, secret);
        QTEST(maskedLoginLine(line, secret), "expected");
    }

    void receivedLinesLoseTheSecretOfALogin_data()
    {
        columns<QString, QString>("line", "expected");
        QTest::newRow("another's login") << u"#APAB2:SERVER:1002::1:9:5:Han"_qs << u"#APAB2:SERVER:1002::1:9:5:Han"_qs;
        QTest::newRow("echo of the own") << u"#APAB1:SERVER:1001:pass:1:9:5:Li"_qs
                                         << u"#APAB1:SERVER:1001:******:1:9:5:Li"_qs;
        QTest::newRow("echo of an observer's")
            << u"#AAAB1:SERVER:Li:1001:pass:1:9"_qs << u"#AAAB1:SERVER:Li:1001:******:1:9"_qs;
        QTest::newRow("quoted by an error") << u"$ERSERVER:AB1:004:#APAB1:SERVER:1001:pass:1:9:5:Li:Syntax error"_qs
                                            << u"$ERSERVER:AB1:004:#APAB1:SERVER:1001:******:1:9:5:Li:Syntax error"_qs;
        QTest::newRow("an observer's quoted by an error")
            << u"$ERSERVER:AB1:004:#AAAB1:SERVER:Li:1001:pass:1:9:Syntax error"_qs
            << u"$ERSERVER:AB1:004:#AAAB1:SERVER:Li:1001:******:1:9:Syntax error"_qs;
        QTest::newRow("quoted by a text") << u"#TMSERVER:AB1:bad line: #APAB1:SERVER:1001:pass"_qs
                                          << u"#TMSERVER:AB1:bad line: #APAB1:SERVER:1001:******"_qs;
        QTest::newRow("both kinds quoted")
            << u"#TMSERVER:AB1:#AA pass #AP pass"_qs << u"#TMSERVER:AB1:#AA ****** #AP ******"_qs;
        QTest::newRow("before the quotation")
            << u"#TMSERVER:AB1:pass #AP pass"_qs << u"#TMSERVER:AB1:pass #AP ******"_qs;
        QTest::newRow("quoted without digits")
            << u"#TMSERVER:AB1:bad: #APZBAA:SERVER:1001:pass"_qs << u"#TMSERVER:AB1:bad: #APZBAA:SERVER:1001:******"_qs;
        QTest::newRow("quoted with blanks")
            << u"#TMSERVER:AB1:bad: #AALI SERVER Li pass"_qs << u"#TMSERVER:AB1:bad: #AALI SERVER Li ******"_qs;
        QTest::newRow("a word") << u"#TMSERVER:AB1:see #APPROACH, you pass"_qs
                                << u"#TMSERVER:AB1:see #APPROACH, you pass"_qs;
        QTest::newRow("a word before a colon")
            << u"#TMSERVER:AB1:#AAL: you pass"_qs << u"#TMSERVER:AB1:#AAL: you pass"_qs;
        QTest::newRow("a word before a quotation") << u"#TMSERVER:AB1:#APPROACH pass #APAB1:SERVER:1001:pass"_qs
                                                   << u"#TMSERVER:AB1:#APPROACH pass #APAB1:SERVER:1001:******"_qs;
        QTest::newRow("a line that begins like a word") << u"#APPROACH pass"_qs << u"#APPROACH ******"_qs;
        QTest::newRow("in a text alone") << u"#TMSERVER:AB1:pass"_qs << u"#TMSERVER:AB1:pass"_qs;
    }

    void receivedLinesLoseTheSecretOfALogin()
    {
        QFETCH(QString, line);
        QFETCH(QString, expected);
        QCOMPARE(withoutSecret(line, u"pass"_qs), expected);
        QTemporaryDir folder;
        ManualClock clock(noonUtc);
        SessionLog log(folder.path(), clock);
        log.writeReceived(line, u"pass"_qs);
        log.stopFlushing();
        QCOMPARE(contents(log.path()), u"[12:00:00.123] <<< %1\n"_qs.arg(expected));
    }

    void aTokenIsMaskedInAnyLine_data()
    {
        columns<qsizetype, bool>("length", "masked");
        QTest::newRow("as long as a token") << qsizetype(32) << true;
        QTest::newRow("as long as a word") << qsizetype(31) << false;
    }
    void aTokenIsMaskedInAnyLine()
    {
        QFETCH(const qsizetype, length);
        QFETCH(const bool, masked);
        const QString secret(length, u'e');
        const QString line = u"$ERSERVER:AB1:006:%1:Invalid CID/password"_qs;
        const QString expected = masked ? line.arg(u"******"_qs) : line.arg(secret);
        QCOMPARE(withoutSecret(line.arg(secret), secret), expected);
        QCOMPARE(errorWithoutSecret(u"x"_qs, line.arg(secret), secret), expected);
        QCOMPARE(withoutSecret(secret, secret) == u"******"_qs, masked);
        QCOMPARE(withoutSecret(u"short"_qs, secret), u"short"_qs);
    }

    void errorMessagesLoseTheSecretOfALogin_data()
    {
        columns<QString, QString, QString>("parameter", "message", "expected");
        QTest::newRow("quoted in the message")
            << u"x"_qs << u"bad: #APAB1 SERVER 1001 pass"_qs << u"bad: #APAB1 SERVER 1001 ******"_qs;
        QTest::newRow("the quotation begins in the parameter") << u"#APAB1 1001"_qs << u"pass"_qs << u"******"_qs;
        QTest::newRow("an observer's") << u"#AAAB1"_qs << u"pass"_qs << u"******"_qs;
        QTest::newRow("a word") << u"see #APPROACH"_qs << u"no pass"_qs << u"no pass"_qs;
        QTest::newRow("no quotation") << u"x"_qs << u"no pass"_qs << u"no pass"_qs;
    }

    void errorMessagesLoseTheSecretOfALogin()
    {
        QFETCH(QString, parameter);
        QFETCH(QString, message);
        QTEST(errorWithoutSecret(parameter, message, u"pass"_qs), "expected");
    }

    void errorsLoseTheSecretOfTheirPacket_data()
    {
        columns<QString, QString, QString>("error", "secret", "expected");
        QTest::newRow("in the packet") << u"Invalid field. (Raw packet: AB1:SERVER:1001:pass)"_qs << u"pass"_qs
                                       << u"Invalid field. (Raw packet: AB1:SERVER:1001:******)"_qs;
        QTest::newRow("not in the words before") << u"Invalid field. (Raw packet: AB1:field)"_qs << u"field"_qs
                                                 << u"Invalid field. (Raw packet: AB1:******)"_qs;
        QTest::newRow("as it comes back")
            << u"Bad. (Raw packet: AB1:\u00E9?)"_qs << u"\u00E9\u5BC6"_qs << u"Bad. (Raw packet: AB1:******)"_qs;
        QTest::newRow("no secret") << u"Bad. (Raw packet: AB1)"_qs << u""_qs << u"Bad. (Raw packet: AB1)"_qs;
        QTest::newRow("no packet") << u"HostNotFoundError: Host not found"_qs << u"Host"_qs
                                   << u"HostNotFoundError: Host not found"_qs;
    }

    void errorsLoseTheSecretOfTheirPacket()
    {
        QFETCH(QString, error);
        QFETCH(QString, secret);
        QTEST(withoutSecretInPacket(error, secret), "expected");
    }

    void aLineCannotWriteFurtherLines()
    {
        QTemporaryDir folder;
        ManualClock clock(noonUtc);
        SessionLog log(folder.path(), clock);
        log.writeReceived(u"#TMA:B:x\n[12:00:00.123] >>> $POA:B:1\ry\r\n"_qs, {});
        log.writeSent(u"$ZRA:B:x\ny\r\n"_qs, {});
        log.stopFlushing();
        QCOMPARE(contents(log.path()), u"[12:00:00.123] <<< #TMA:B:x [12:00:00.123] >>> $POA:B:1 y\n"
                                       "[12:00:00.123] >>> $ZRA:B:x y\n"_qs);
    }

    void writesLinesWithUtcTime()
    {
        QTemporaryDir folder;
        ManualClock clock(noonUtc);
        SessionLog log(folder.filePath(u"deep/network"_qs), clock);
        QVERIFY(log.isOpen());
        QCOMPARE(QFileInfo(log.path()).fileName(), u"network-2023-11-15_12-00-00.log"_qs);
        log.writeSent(u"#APAB1:SERVER:1001:pass:1:9:5:Li ZBAA\r\n"_qs, u"pass"_qs);
        clock.advance(877);
        log.writeReceived(u"$DISERVER:CLIENT:v:1\r\n"_qs, u"pass"_qs);
        log.stopFlushing();
        QCOMPARE(contents(log.path()), u"[12:00:00.123] >>> #APAB1:SERVER:1001:******:1:9:5:Li ZBAA\n"
                                       "[12:00:01.000] <<< $DISERVER:CLIENT:v:1\n"_qs);
    }

    void aClockBeforeTheEpochGivesATimeToo()
    {
        const QTemporaryDir folder;
        const ManualClock clock(-1);
        SessionLog log(folder.path(), clock);
        log.writeSent(u"$POA:B:1\r\n"_qs, {});
        log.stopFlushing();
        QCOMPARE(contents(log.path()), u"[23:59:59.999] >>> $POA:B:1\n"_qs);
    }

    void theTimerBringsLinesToTheDisk()
    {
        QTemporaryDir folder;
        ManualClock clock(noonUtc);
        SessionLog log(folder.path(), clock);
        log.startFlushing();
        log.writeSent(u"$POA:B:1\r\n"_qs, {});
        QCOMPARE(contents(log.path()), QString());
        TRY_COMPARE(contents(log.path()), u"[12:00:00.123] >>> $POA:B:1\n"_qs);
    }

    void keepsTenOlderFiles()
    {
        QTemporaryDir folder;
        ManualClock clock(noonUtc);
        for (int i = 0; i < 11; ++i)
            makeFile(folder.filePath(u"old-%1"_qs.arg(i)), noonUtc - 100'000 + i * 1000);
        const SessionLog log(folder.path(), clock);
        const QStringList names = QDir(folder.path()).entryList(QDir::Files);
        QCOMPARE(names.size(), 11);
        QVERIFY(!names.contains(u"old-0"_qs));
        QVERIFY(names.contains(u"old-1"_qs) && names.contains(QFileInfo(log.path()).fileName()));
    }

    void goesOnInANextFile()
    {
        QTemporaryDir folder;
        ManualClock clock(noonUtc);
        for (int i = 0; i < 10; ++i)
            makeFile(folder.filePath(u"old-%1"_qs.arg(i)), noonUtc - 100'000 + i * 1000);
        SessionLog log(folder.path(), clock, 60); // bytes: two lines
        for (int i = 0; i < 3; ++i) {
            log.writeSent(u"$POA:B:123456\r\n"_qs, {});
            log.stopFlushing(); // counts what has reached the file
        }
        const QString first = log.path();
        QCOMPARE(contents(first).count(u'\n'), 3); // no second file within the same second
        clock.advance(1000);
        log.writeReceived(u"$POA:B:7\r\n"_qs, {});
        log.stopFlushing();
        QCOMPARE(QFileInfo(log.path()).fileName(), u"network-2023-11-15_12-00-01.log"_qs);
        QCOMPARE(contents(log.path()), u"[12:00:01.123] <<< $POA:B:7\n"_qs);
        QCOMPARE(contents(first).count(u'\n'), 3);
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), 11);
        QCOMPARE(SessionLog::longestFile, 64'000'000);
    }

    void triesTheNextFileAgain()
    {
        QTemporaryDir folder;
        ManualClock clock(noonUtc);
        SessionLog log(folder.path(), clock, 10);
        log.startFlushing();
        log.writeSent(u"$POA:B:1\r\n"_qs, {});
        log.stopFlushing();
        QVERIFY(QDir(folder.path()).mkdir(u"network-2023-11-15_12-00-01.log"_qs)); // in its place
        clock.advance(1000);
        LogCapture told;
        for (const QString &lost : {u"$POA:B:2\r\n"_qs, u"$POA:B:3\r\n"_qs})
            log.writeSent(lost, {});
        QVERIFY(!log.isOpen());
        QCOMPARE(told.texts(QtWarningMsg).size(), 1);
        QVERIFY(told.texts(QtWarningMsg).first().startsWith(u"Lines of the network log may be lost:"_qs));
        clock.advance(1000);
        log.startFlushing(); // as the timer does
        QVERIFY(log.isOpen());
        log.writeSent(u"$POA:B:4\r\n"_qs, {});
        log.stopFlushing();
        QCOMPARE(contents(folder.filePath(u"network-2023-11-15_12-00-02.log"_qs)), u"[12:00:02.123] >>> $POA:B:4\n"_qs);
    }

    void twoLogsOfOneSecondKeepBothTheirLines()
    {
        QTemporaryDir folder;
        ManualClock clock(noonUtc);
        QString path;
        for (const char16_t *line : {u"$POA:B:1\r\n", u"$POA:B:2\r\n"}) {
            SessionLog log(folder.path(), clock);
            log.writeSent(QString::fromUtf16(line), {});
            path = log.path();
        }
        QCOMPARE(contents(path), u"[12:00:00.123] >>> $POA:B:1\n[12:00:00.123] >>> $POA:B:2\n"_qs);
    }

    void goesOnWithoutALog()
    {
        QTemporaryDir folder;
        makeFile(folder.filePath(u"taken"_qs), noonUtc);
        const QString path = folder.filePath(u"taken/network"_qs);
        ManualClock clock(noonUtc);
        const QRegularExpression expected(u"^Unable to create directory "_qs + QRegularExpression::escape(path));
        QTest::ignoreMessage(QtCriticalMsg, expected);
        SessionLog log(path, clock);
        QVERIFY(!log.isOpen());
        log.startFlushing();
        log.writeSent(u"$POA:B:1\r\n"_qs, {});
        log.stopFlushing();
        QCOMPARE(contents(folder.filePath(u"taken"_qs)), u"x"_qs);
    }
};

TARVO_TEST(SessionLogTest)
#include "SessionLogTest.moc"
