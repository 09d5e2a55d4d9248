#include "QAESEncryption.h"

#include <QDebug>

#include <algorithm>
#include <array>
#include <vector>

namespace tarvo {

namespace {

using Byte = unsigned char;
using Block = std::array<Byte, QAESEncryption::blockSize>; // column by column, as the bytes stand in the data
using Table = std::array<Byte, 256>;

/// Multiplies by x in the field of the cipher, modulo x^8 + x^4 + x^3 + x + 1.
constexpr Byte timesTwo(Byte a)
{
    return static_cast<Byte>((a << 1) ^ ((a & 0x80) != 0 ? 0x1b : 0));
}

constexpr Byte multiply(Byte a, Byte b)
{
    Byte product = 0;
    for (; b != 0; b = static_cast<Byte>(b >> 1), a = timesTwo(a)) {
        if ((b & 1) != 0)
            product ^= a;
    }
    return product;
}

/// FIPS-197, 5.1.1: the inverse in the field (3 generates it, so 3^n and 3^(255-n) are inverse), then the affine map.
constexpr Table makeSubstitution()
{
    Table powers{};
    Byte power = 1;
    for (std::size_t i = 0; i < powers.size(); ++i, power = multiply(power, 3))
        powers[i] = power;
    Table box{};
    box[0] = 0x63;
    for (std::size_t n = 0; n < 255; ++n) {
        const unsigned inverse = powers[255 - n];
        const unsigned twice = inverse | (inverse << 8); // so that a right shift rotates
        box[powers[n]] = static_cast<Byte>(inverse ^ (twice >> 7) ^ (twice >> 6) ^ (twice >> 5) ^ (twice >> 4) ^ 0x63);
    }
    return box;
}

constexpr Table makeInverse(const Table &box)
{
    Table inverse{};
    for (std::size_t i = 0; i < box.size(); ++i)
        inverse[box[i]] = static_cast<Byte>(i);
    return inverse;
}

constexpr Table substitution = makeSubstitution();
constexpr Table inverseSubstitution = makeInverse(substitution);
static_assert(substitution[0x53] == 0xed && substitution[1] == 0x7c); // FIPS-197, 5.1.1

/// FIPS-197, 5.2. One round key of 16 bytes more than there are rounds: key words + 6.
class KeySchedule
{
public:
    explicit KeySchedule(const QByteArray &key) : m_bytes(key.begin(), key.end())
    {
        const std::size_t keyBytes = m_bytes.size();
        m_rounds = static_cast<int>(keyBytes / 4) + 6;
        const std::size_t total = std::size_t{16} * (static_cast<std::size_t>(m_rounds) + 1);
        Byte constant = 1;
        while (m_bytes.size() < total) {
            const std::size_t at = m_bytes.size();
            std::array<Byte, 4> word{m_bytes[at - 4], m_bytes[at - 3], m_bytes[at - 2], m_bytes[at - 1]};
            if (at % keyBytes == 0) {
                std::rotate(word.begin(), word.begin() + 1, word.end());
                substitute(word);
                word[0] ^= constant;
                constant = timesTwo(constant);
            } else if (keyBytes == 32 && at % keyBytes == 16) {
                substitute(word);
            }
            for (std::size_t i = 0; i < word.size(); ++i)
                m_bytes.push_back(static_cast<Byte>(m_bytes[at - keyBytes + i] ^ word[i]));
        }
    }

    int rounds() const { return m_rounds; }

    void add(Block &block, int round) const
    {
        for (std::size_t i = 0; i < block.size(); ++i)
            block[i] ^= m_bytes[static_cast<std::size_t>(round) * block.size() + i];
    }

private:
    static void substitute(std::array<Byte, 4> &word)
    {
        for (Byte &byte : word)
            byte = substitution[byte];
    }

    std::vector<Byte> m_bytes;
    int m_rounds = 0;
};

/// Row r of the state moves left by r columns; `direction` -1 moves it back.
void shiftRows(Block &block, int direction)
{
    const Block old = block;
    for (std::size_t i = 0; i < block.size(); ++i) {
        const std::size_t row = i % 4;
        const std::size_t steps = direction > 0 ? row : 4 - row;
        block[i] = old[(i + 4 * steps) % block.size()];
    }
}

/// Multiplies each column by the polynomial whose coefficients are the first row of the matrix.
void mixColumns(Block &block, const std::array<Byte, 4> &row)
{
    const Block old = block;
    for (std::size_t i = 0; i < block.size(); ++i) {
        const std::size_t column = i - i % 4;
        Byte sum = 0;
        for (std::size_t k = 0; k < 4; ++k)
            sum ^= multiply(old[column + k], row[(k + 4 - i % 4) % 4]);
        block[i] = sum;
    }
}

void encryptBlock(Block &block, const KeySchedule &keys)
{
    keys.add(block, 0);
    for (int round = 1; round <= keys.rounds(); ++round) {
        for (Byte &byte : block)
            byte = substitution[byte];
        shiftRows(block, 1);
        if (round < keys.rounds()) // the last round doesn't mix
            mixColumns(block, {2, 3, 1, 1});
        keys.add(block, round);
    }
}

void decryptBlock(Block &block, const KeySchedule &keys)
{
    for (int round = keys.rounds(); round > 0; --round) {
        keys.add(block, round);
        if (round < keys.rounds())
            mixColumns(block, {14, 11, 13, 9});
        shiftRows(block, -1);
        for (Byte &byte : block)
            byte = inverseSubstitution[byte];
    }
    keys.add(block, 0);
}

Block blockAt(const QByteArray &bytes, qsizetype at)
{
    Block block{};
    std::copy_n(bytes.cbegin() + at, block.size(), block.begin());
    return block;
}

void addTo(Block &block, const Block &other)
{
    for (std::size_t i = 0; i < block.size(); ++i)
        block[i] ^= other[i];
}

} // namespace

QAESEncryption::QAESEncryption(Level level, Mode mode, Padding padding, QObject *parent)
    : QObject(parent), m_level(level), m_mode(mode), m_padding(padding)
{
}

qsizetype QAESEncryption::keySize() const
{
    return 16 + 8 * static_cast<qsizetype>(m_level);
}

bool QAESEncryption::accepts(const QByteArray &key, const QByteArray &vector) const
{
    return key.size() == keySize() && (m_mode == Mode::Ecb || vector.size() == blockSize);
}

QByteArray QAESEncryption::encode(const QByteArray &data, const QByteArray &key, const QByteArray &vector) const
{
    QByteArray bytes = data;
    if (m_padding == Padding::Pkcs7) {
        const qsizetype count = blockSize - data.size() % blockSize;
        bytes.append(count, static_cast<char>(count));
    }
    if (!accepts(key, vector) || bytes.size() % blockSize != 0)
        return {};
    const KeySchedule keys(key);
    Block chain = m_mode == Mode::Cbc ? blockAt(vector, 0) : Block{};
    for (qsizetype at = 0; at < bytes.size(); at += blockSize) {
        Block block = blockAt(bytes, at);
        if (m_mode == Mode::Cbc)
            addTo(block, chain);
        encryptBlock(block, keys);
        chain = block;
        std::copy(block.begin(), block.end(), bytes.begin() + at);
    }
    return bytes;
}

QByteArray QAESEncryption::decode(const QByteArray &data, const QByteArray &key, const QByteArray &vector) const
{
    if (!accepts(key, vector) || data.size() % blockSize != 0)
        return {};
    QByteArray bytes = data;
    const KeySchedule keys(key);
    Block chain = m_mode == Mode::Cbc ? blockAt(vector, 0) : Block{};
    for (qsizetype at = 0; at < bytes.size(); at += blockSize) {
        const Block cipher = blockAt(bytes, at);
        Block block = cipher;
        decryptBlock(block, keys);
        if (m_mode == Mode::Cbc)
            addTo(block, chain);
        chain = cipher;
        std::copy(block.begin(), block.end(), bytes.begin() + at);
    }
    return bytes;
}

QByteArray QAESEncryption::removePadding(const QByteArray &data) const
{
    if (m_padding == Padding::None)
        return data;
    const qsizetype count = data.isEmpty() ? 0 : static_cast<Byte>(data.back());
    const bool valid = count >= 1 && count <= std::min(blockSize, data.size()) &&
                       std::all_of(data.cend() - count, data.cend(), [&](char c) { return c == data.back(); });
    if (!valid) {
        qWarning("QAESEncryption::RemovePadding: invalid PKCS7 padding — buffer returned unchanged");
        return data;
    }
    return data.chopped(count);
}

} // namespace tarvo
