#pragma once

#include <QByteArray>
#include <QJsonObject>

namespace tarvo::practice {

/// A JSON Web Token signed with HMAC SHA-256 ("HS256", RFC 7515 and 7519).
class JsonWebToken
{
public:
    enum class Verdict
    {
        Valid,
        Malformed,    ///< not three parts of Base64 URL with JSON objects inside, or another algorithm
        BadSignature, ///< not signed with this key
        Expired,      ///< "exp" is now or earlier, or absent
    };

    struct Reading
    {
        Verdict verdict = Verdict::Malformed;
        QJsonObject claims; ///< filled when the signature is good, expired or not
    };

    /// The compact form of `claims` under `key`.
    static QByteArray sign(const QJsonObject &claims, const QByteArray &key);
    /// Checks the compact form. `nowSeconds` is Unix time.
    static Reading read(const QByteArray &token, const QByteArray &key, qint64 nowSeconds);
    /// HS256 of "header.payload", as Base64 URL without padding.
    static QByteArray signature(const QByteArray &signingInput, const QByteArray &key);
};

} // namespace tarvo::practice
