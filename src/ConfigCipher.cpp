#include "ConfigCipher.h"

#include "QAESEncryption.h"

#include <QMessageAuthenticationCode>
#include <QRandomGenerator>
#include <QtEndian>

#include <array>

namespace tarvo::cipher {

namespace {

constexpr qsizetype saltSize = 16;
constexpr qsizetype vectorSize = QAESEncryption::blockSize;
constexpr int keySize = 32;

QByteArray randomBytes(qsizetype count)
{
    QByteArray bytes(count, Qt::Uninitialized);
    QRandomGenerator64 *generator = QRandomGenerator64::system();
    for (char &byte : bytes)
        byte = static_cast<char>(generator->generate() & 0xff);
    return bytes;
}

QAESEncryption aes()
{
    return QAESEncryption(QAESEncryption::Level::Aes256, QAESEncryption::Mode::Cbc, QAESEncryption::Padding::Pkcs7);
}

} // namespace

QByteArray pbkdf2Sha256(const QByteArray &password, const QByteArray &salt, int rounds, int length)
{
    QMessageAuthenticationCode hmac(QCryptographicHash::Sha256, password); // one object: the key is set up once
    QByteArray derived;
    for (quint32 index = 1; derived.size() < length; ++index) {
        std::array<char, sizeof index> bigEndian{};
        qToBigEndian(index, bigEndian.data());
        hmac.reset();
        hmac.addData(salt);
        hmac.addData(bigEndian.data(), bigEndian.size());
        QByteArray round = hmac.result();
        QByteArray block = round;
        for (int i = 1; i < rounds; ++i) {
            hmac.reset();
            hmac.addData(round);
            round = hmac.result();
            for (qsizetype k = 0; k < block.size(); ++k)
                block[k] = static_cast<char>(block.at(k) ^ round.at(k));
        }
        derived += block;
    }
    return derived.first(length);
}

QString encrypt(const QString &plain, const QByteArray &secret, int rounds)
{
    const QByteArray salt = randomBytes(saltSize);
    const QByteArray vector = randomBytes(vectorSize);
    const QByteArray key = pbkdf2Sha256(secret, salt, rounds, keySize);
    const QByteArray stored = salt + vector + aes().encode(plain.toUtf8(), key, vector);
    return QString::fromLatin1(stored.toBase64());
}

QString decrypt(const QString &stored, const QByteArray &secret, int rounds)
{
    const QByteArray bytes = QByteArray::fromBase64(stored.toLatin1());
    if (bytes.size() <= saltSize + vectorSize)
        return {};
    const QByteArray key = pbkdf2Sha256(secret, bytes.first(saltSize), rounds, keySize);
    const QByteArray padded =
        aes().decode(bytes.sliced(saltSize + vectorSize), key, bytes.sliced(saltSize, vectorSize));
    if (padded.isEmpty())
        return {};
    return QString::fromUtf8(aes().removePadding(padded));
}

} // namespace tarvo::cipher
