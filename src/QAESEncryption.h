#pragma once

#include <QByteArray>
#include <QObject>

namespace tarvo {

/// The AES block cipher (FIPS-197) over byte arrays. The stored settings use AES-256, CBC and PKCS#7.
class QAESEncryption : public QObject
{
    Q_OBJECT

public:
    enum class Level
    {
        Aes128,
        Aes192,
        Aes256
    };
    enum class Mode
    {
        Ecb, ///< every block on its own; the vector is not looked at
        Cbc,
    };
    enum class Padding
    {
        None,  ///< the data must be whole blocks
        Pkcs7, ///< 1 to 16 bytes, each of them the count
    };

    static constexpr qsizetype blockSize = 16;

    QAESEncryption(Level level, Mode mode, Padding padding = Padding::Pkcs7, QObject *parent = nullptr);

    /// Length in bytes of the key that the level needs: 16, 24 or 32.
    qsizetype keySize() const;

    /// Pads and encrypts `data`. Empty when the key or the vector has the wrong length, or when the data are no whole
    /// blocks and nothing pads them.
    QByteArray encode(const QByteArray &data, const QByteArray &key, const QByteArray &vector = {}) const;

    /// Decrypts `data` and leaves the padding on (see removePadding). Empty when the key or the vector has the wrong
    /// length, or when the data are no whole blocks.
    QByteArray decode(const QByteArray &data, const QByteArray &key, const QByteArray &vector = {}) const;

    /// Takes the padding off a decoded buffer. Invalid PKCS#7 gives a warning and the buffer as it stands.
    QByteArray removePadding(const QByteArray &data) const;

private:
    bool accepts(const QByteArray &key, const QByteArray &vector) const;

    Level m_level;
    Mode m_mode;
    Padding m_padding;
};

} // namespace tarvo
