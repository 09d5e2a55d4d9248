#include "ConfigCipher.h"
#include "support/TestRegistry.h"

#include <QTest>

namespace cipher = tarvo::cipher;

namespace {

const QByteArray secret(32, 's');
constexpr int fewRounds = 2;

QString base64(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toBase64());
}

} // namespace

class ConfigCipherTest : public QObject
{
    Q_OBJECT

private slots:
    void publishedKeyDerivations_data()
    {
        QTest::addColumn<QByteArray>("password");
        QTest::addColumn<QByteArray>("salt");
        QTest::addColumn<int>("rounds");
        QTest::addColumn<QByteArray>("derived");
        QTest::newRow("RFC 7914: one round, two blocks")
            << QByteArray("passwd") << QByteArray("salt") << 1
            << QByteArray("55ac046e56e3089fec1691c22544b605f94185216dde0465e68b9d57c20dacbc"
                          "49ca9cccf179b645991664b39d77ef317c71b845b1e30bd509112041d3a19783");
        QTest::newRow("RFC 7914: 80000 rounds, two blocks")
            << QByteArray("Password") << QByteArray("NaCl") << 80000
            << QByteArray("4ddcd8f60b98be21830cee5ef22701f9641a4418d04c0414aeff08876b34ab56"
                          "a1d425a1225833549adb841b51c9b3176a272bdebba1d078478f62b397f33c8d");
        QTest::newRow("two rounds") << QByteArray("password") << QByteArray("salt") << 2
                                    << QByteArray("ae4d0c95af6b46d32d0adff928f06dd02a303f8ef3c251dfd6e2d85a95474c43");
        QTest::newRow("4096 rounds") << QByteArray("password") << QByteArray("salt") << 4096
                                     << QByteArray("c5e478d59288c841aa530db6845c4c8d962893a001ce4e11a4963873aa98134a");
        QTest::newRow("a part of the second block")
            << QByteArray("passwordPASSWORDpassword") << QByteArray("saltSALTsaltSALTsaltSALTsaltSALTsalt") << 4096
            << QByteArray("348c89dbcbd32b2f32d814b8116e84cf2b17347ebc1800181c4e2a1fb8dd53e1c635518c7dac47e9");
        QTest::newRow("zero bytes, part of a block") << QByteArray("pass\0word", 9) << QByteArray("sa\0lt", 5) << 4096
                                                     << QByteArray("89b69d0516f829893c696226650a8687");
    }

    void publishedKeyDerivations()
    {
        QFETCH(const QByteArray, password);
        QFETCH(const QByteArray, salt);
        QFETCH(const int, rounds);
        QFETCH(const QByteArray, derived);
        const int length = static_cast<int>(derived.size() / 2);
        QCOMPARE(cipher::pbkdf2Sha256(password, salt, rounds, length).toHex(), derived);
    }

    void textComesBack_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QString();
        QTest::newRow("ASCII") << QStringLiteral("correct horse");
        QTest::newRow("Chinese") << QStringLiteral("密码一二三");
        QTest::newRow("beyond the BMP") << QStringLiteral("\U0001F6EB\U0001F6EC");
        QTest::newRow("a whole block") << QString(16, u'x');
        QTest::newRow("long") << QString(5000, u'字');
    }

    void textComesBack()
    {
        QFETCH(const QString, text);
        const QString stored = cipher::encrypt(text, secret, fewRounds);
        QCOMPARE(cipher::decrypt(stored, secret, fewRounds), text);
    }

    void storedFormIsSaltVectorAndBlocks()
    {
        const QString stored = cipher::encrypt(QStringLiteral("pw"), secret, fewRounds);
        QCOMPARE(QByteArray::fromBase64(stored.toLatin1()).size(), 16 + 16 + 16);
        const QString again = cipher::encrypt(QStringLiteral("pw"), secret, fewRounds);
        const QByteArray first = QByteArray::fromBase64(stored.toLatin1());
        const QByteArray second = QByteArray::fromBase64(again.toLatin1());
        QVERIFY(first.first(16) != second.first(16));
        QVERIFY(first.sliced(16, 16) != second.sliced(16, 16));
    }

    // Made with other software: Python's hashlib.pbkdf2_hmac and "openssl enc -aes-256-cbc".
    void foreignCipherTextReads()
    {
        const QByteArray key(32, 'S');
        QCOMPARE(
            cipher::decrypt(QStringLiteral("AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh+nA4vUmMVGV7GTM3WhRQuK"), key),
            QStringLiteral("tarvo-密码"));
    }

    void damageGivesAnEmptyText_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::newRow("empty") << QString();
        QTest::newRow("no Base64 at all") << QStringLiteral("!!!! ???? 密码");
        QTest::newRow("31 bytes") << base64(QByteArray(31, 'x'));
        QTest::newRow("salt and vector only") << base64(QByteArray(32, 'x'));
        QTest::newRow("ragged block") << base64(QByteArray(47, 'x'));
    }

    void damageGivesAnEmptyText()
    {
        QFETCH(const QString, stored);
        QCOMPARE(cipher::decrypt(stored, secret, fewRounds), QString());
    }

    void anotherSecretGivesAnotherText()
    {
        const QString stored = cipher::encrypt(QStringLiteral("password"), secret, fewRounds);
        QVERIFY(cipher::decrypt(stored, QByteArray(32, 't'), fewRounds) != QStringLiteral("password"));
    }
};

TARVO_TEST(ConfigCipherTest)
#include "ConfigCipherTest.moc"
