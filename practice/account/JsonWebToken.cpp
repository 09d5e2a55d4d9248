#include "practice/account/JsonWebToken.h"

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QList>
#include <QMessageAuthenticationCode>

namespace tarvo::practice {

namespace {
constexpr auto base64Url = QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals;
constexpr qsizetype longestToken = 8192; // nothing that is issued here comes near

QByteArray encoded(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toBase64(base64Url);
}

QJsonObject decoded(const QByteArray &part)
{
    const auto bytes =
        QByteArray::fromBase64Encoding(part, QByteArray::Base64UrlEncoding | QByteArray::AbortOnBase64DecodingErrors);
    return bytes ? QJsonDocument::fromJson(bytes.decoded).object() : QJsonObject();
}

/// Takes the same time for every wrong text of the right length.
bool sameText(const QByteArray &a, const QByteArray &b)
{
    if (a.size() != b.size())
        return false;
    int difference = 0;
    for (qsizetype i = 0; i < a.size(); ++i)
        difference |= a.at(i) ^ b.at(i);
    return difference == 0;
}
} // namespace

QByteArray JsonWebToken::signature(const QByteArray &signingInput, const QByteArray &key)
{
    return QMessageAuthenticationCode::hash(signingInput, key, QCryptographicHash::Sha256).toBase64(base64Url);
}

QByteArray JsonWebToken::sign(const QJsonObject &claims, const QByteArray &key)
{
    const QJsonObject header{{QStringLiteral("alg"), QStringLiteral("HS256")},
                             {QStringLiteral("typ"), QStringLiteral("JWT")}};
    const QByteArray input = encoded(header) + '.' + encoded(claims);
    return input + '.' + signature(input, key);
}

JsonWebToken::Reading JsonWebToken::read(const QByteArray &token, const QByteArray &key, qint64 nowSeconds)
{
    const QList<QByteArray> parts = token.size() <= longestToken ? token.split('.') : QList<QByteArray>();
    if (parts.size() != 3)
        return {Verdict::Malformed, {}};
    const QJsonObject claims = decoded(parts.at(1));
    if (decoded(parts.at(0)).value(QLatin1String("alg")).toString() != QLatin1String("HS256") || claims.isEmpty())
        return {Verdict::Malformed, {}};
    if (!sameText(parts.at(2), signature(parts.at(0) + '.' + parts.at(1), key)))
        return {Verdict::BadSignature, {}};
    const bool alive = claims.value(QLatin1String("exp")).toDouble() > static_cast<double>(nowSeconds);
    return {alive ? Verdict::Valid : Verdict::Expired, claims};
}

} // namespace tarvo::practice
