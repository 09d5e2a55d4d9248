#include "diagnosis/MaskedText.h"
#include "common/SecretMask.h"
#include "diagnosis/TestSettings.h"
#include "support/TestRegistry.h"

#include <QBuffer>
#include <QTest>

using namespace tarvo;
using namespace tarvo::diagnosis;

class MaskedTextTest : public QObject
{
    Q_OBJECT

    const common::SecretMask m_mask{{"secret"}};

private slots:
    void settingsKeepWhatIsNotSecret_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("a text") << u"Auth/Username"_qs << QVariant(u"1001"_qs) << QByteArray("Username=1001");
        QTest::newRow("a list") << u"XPlane/CSL"_qs << QVariant(QStringList{u"/a"_qs, u"/b"_qs})
                                << QByteArray("CSL=/a, /b");
        QTest::newRow("a password") << u"Auth/Password"_qs << QVariant(u"AbC="_qs) << QByteArray("Password=******");
        QTest::newRow("a token") << u"Auth/RefreshToken"_qs << QVariant(u"AbC="_qs)
                                 << QByteArray("RefreshToken=******");
        QTest::newRow("no password") << u"Auth/Password"_qs << QVariant(QString()) << QByteArray("Password=");
        QTest::newRow("a damaged name") << u"Auth/Passwrd"_qs << QVariant(u"AbC="_qs) << QByteArray("Passwrd=******");
        QTest::newRow("a damaged section")
            << u"Au/Username"_qs << QVariant(u"AbC="_qs) << QByteArray("Username=******");
        QTest::newRow("a list of damaged name")
            << u"Auth/Passwrd"_qs << QVariant(QStringList{u"Ab"_qs, u"C"_qs}) << QByteArray("Passwrd=******");
        QTest::newRow("a secret elsewhere")
            << u"Auth/Username"_qs << QVariant(u"my secret!"_qs) << QByteArray("Username=my ******!");
        QTest::newRow("a secret in a list")
            << u"XPlane/CSL"_qs << QVariant(QStringList{u"/secret"_qs, u"/b"_qs}) << QByteArray("CSL=/******, /b");
        QTest::newRow("a secret for a name")
            << u"Auth/secret"_qs << QVariant(u"x"_qs) << QByteArray("%2A%2A%2A%2A%2A%2A=******");
    }
    void settingsKeepWhatIsNotSecret()
    {
        QFETCH(const QString, key);
        QFETCH(const QVariant, value);
        QFETCH(const QByteArray, line);
        const QByteArray text = maskedSettings({{key, value}}, m_mask);
        QVERIFY2(text.endsWith("]\n" + line + '\n'), text.constData());
    }

    void logsLoseTheirSecrets_data()
    {
        QTest::addColumn<QByteArray>("log");
        QTest::addColumn<QByteArray>("shown");
        QTest::newRow("empty") << QByteArray() << QByteArray();
        QTest::newRow("nothing secret") << QByteArray("a\nb\n") << QByteArray("a\nb\n");
        QTest::newRow("in a line") << QByteArray("a secret b\nc\n") << QByteArray("a ****** b\nc\n");
        QTest::newRow("at a line's end") << QByteArray("a\nsecret\n") << QByteArray("a\n******\n");
        // All goes that a secret could be in, at 18 bytes for each of its own.
        QTest::newRow("in a line that was cut") << "a secret b" + QByteArray(103, 'x') + "secre [cut]\n"
                                                << QByteArray("a ****** b [cut]\n");
        QTest::newRow("in a line that was cut, escaped") << "a" + QByteArray(98, 'x') + "\\u0073ecre [cut]\n"
                                                         << QByteArray("a [cut]\n");
        QTest::newRow("in a short line that was cut") << QByteArray("abc secre [cut]\n") << QByteArray(" [cut]\n");
        QTest::newRow("in a line that isn't written yet")
            << "a\nbc" + QByteArray(103, 'x') + "secre" << QByteArray("a\nbc [cut]\n");
        QTest::newRow("Base64") << QByteArray("a c2VjcmV0 b\n") << QByteArray("a ****** b\n");
        QTest::newRow("percent-encoded") << QByteArray("a %73ecret b\n") << QByteArray("a ****** b\n");
        QTest::newRow("a token that no settings hold")
            << QByteArray("<<< $ERSERVER:CCA1:006:eyJhbGci.eyJzdWIi.f-s_d:Invalid\n")
            << QByteArray("<<< $ERSERVER:CCA1:006:******:Invalid\n");
        QTest::newRow("a token that was cut") << QByteArray("a eyJhbGciOi.eyJz\n") << QByteArray("a ******\n");
        QTest::newRow("a token in an address")
            << QByteArray("a?t%3DeyJhbGciOi.e.f&b\n") << QByteArray("a?t%3D******&b\n");
        QTest::newRow("a word like a token's beginning") << QByteArray("eyJ1.e.f\n") << QByteArray("eyJ1.e.f\n");
        QTest::newRow("behind Bearer") << QByteArray("Authorization: bearer 1f/2e; x\n")
                                       << QByteArray("Authorization: bearer ******; x\n");
        QTest::newRow("a field of JSON") << QByteArray("{\"flush_token\": \"a\\\"b\",\"token\":1,\"x\":\"y\"}\n")
                                         << QByteArray("{\"flush_token\": \"******\\\"b\",\"token\":1,\"x\":\"y\"}\n");
        QTest::newRow("a field of escaped JSON") << QByteArray("{\\\"Password\\\":\\\"abc\\\",\\\"x\\\":1}\n")
                                                 << QByteArray("{\\\"Password\\\":\\\"******\\\",\\\"x\\\":1}\n");
        QTest::newRow("a pilot's login line, quoted") << QByteArray("bad: #APCCA1:SERVER:1001:pass word:1:9\n")
                                                      << QByteArray("bad: #APCCA1:SERVER:1001:******:1:9\n");
        QTest::newRow("an observer's login line")
            << QByteArray("#AACCA1:SERVER:Li:1001:pass\n") << QByteArray("#AACCA1:SERVER:Li:1001:******\n");
        QTest::newRow("a login line without a password")
            << QByteArray("#APCCA1:SERVER:1001::1:9\n") << QByteArray("#APCCA1:SERVER:1001::1:9\n");
    }
    void logsLoseTheirSecrets()
    {
        QFETCH(QByteArray, log);
        QBuffer buffer(&log);
        QVERIFY(buffer.open(QIODevice::ReadOnly));
        QTEST(maskedLog(buffer, m_mask, 1000), "shown");
    }

    void aLineThatIsTooLongSaysSo()
    {
        const qsizetype longest = common::SecretMask::longestText;
        QByteArray log = QByteArray(longest, '-') + '\n' + QByteArray(longest + 1, '.') + "\nb\n";
        QBuffer buffer(&log);
        QVERIFY(buffer.open(QIODevice::ReadOnly));
        const QList<QByteArray> lines = maskedLog(buffer, m_mask, log.size()).split('\n');
        QCOMPARE(lines.size(), 4);
        QCOMPARE(lines[0].size(), longest);
        QVERIFY(lines[1].endsWith(". [the rest of these 40961 characters is left out]"));
        QCOMPARE(lines[2], QByteArray("b"));
    }

    void whatIsWrittenMeanwhileIsLeft()
    {
        /// Grows by a line with each one that is read.
        class GrowingLog : public QBuffer
        {
        public:
            using QBuffer::QBuffer;
            qint64 readData(char *data, qint64 size) override
            {
                buffer() += "b\n";
                return QBuffer::readData(data, std::min<qint64>(size, 2));
            }
        };
        QByteArray bytes("a\na\n");
        GrowingLog log(&bytes);
        QVERIFY(log.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
        QCOMPARE(maskedLog(log, m_mask, 1000).left(8), QByteArray("a\na\n"));
    }

    void ofALongLogTheEndIsTaken_data()
    {
        QTest::addColumn<qint64>("most");
        QTest::addColumn<QByteArray>("shown");
        QTest::newRow("all of it") << qint64(13) << QByteArray("******\nb1\nb2\n");
        QTest::newRow("not the cut secret") << qint64(10) << QByteArray("[7 bytes before this are left out]\nb1\nb2\n");
        QTest::newRow("not the cut line") << qint64(5) << QByteArray("[10 bytes before this are left out]\nb2\n");
        QTest::newRow("nothing but a cut line") << qint64(1) << QByteArray("[13 bytes before this are left out]\n");
    }
    void ofALongLogTheEndIsTaken()
    {
        QFETCH(const qint64, most);
        QByteArray log("secret\nb1\nb2\n");
        QBuffer buffer(&log);
        QVERIFY(buffer.open(QIODevice::ReadOnly));
        QTEST(maskedLog(buffer, m_mask, most), "shown");
    }
};

TARVO_TEST(MaskedTextTest)
#include "MaskedTextTest.moc"
