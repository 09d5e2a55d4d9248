#pragma once

#include <QByteArray>
#include <QString>

/// How a secret setting is stored: Base64 of salt (16 bytes), vector (16 bytes) and AES-256-CBC cipher text. The key
/// comes from the build's secret and the salt, never from the machine or the user, so that a copied file still reads.
namespace tarvo::cipher {

inline constexpr int iterations = 10000;

/// PBKDF2 (RFC 8018) with HMAC-SHA-256.
QByteArray pbkdf2Sha256(const QByteArray &password, const QByteArray &salt, int rounds, int length);

/// The text to store for `plain`, new for every call. `rounds` are the iterations of the key derivation.
QString encrypt(const QString &plain, const QByteArray &secret, int rounds = iterations);

/// The plain text of a stored value. A damaged value gives an empty or useless text, never an error.
QString decrypt(const QString &stored, const QByteArray &secret, int rounds = iterations);

} // namespace tarvo::cipher
