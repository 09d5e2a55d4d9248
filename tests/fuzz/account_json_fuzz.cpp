// What an account service may send: reply bodies through every record, a token through the expiry reader, and both
// through what is logged of them.
#include "model/AccountModels.h"
#include "model/RatingList.h"
#include "network/IcaoSources.h"
#include "network/JwtExpiry.h"
#include "network/LogRedaction.h"
#include "network/RecordQuery.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cstdlib>

using namespace tarvo;

namespace {

template <class T>
void parseAlone(const QJsonObject &object)
{
    T record;
    record.parse(object);
}

void require(bool holds)
{
    if (!holds)
        std::abort();
}

/// A word that no JSON text holds by itself; with an escape beside it ("\n" and a word) even that is not sure.
bool isPlainWord(const QString &text)
{
    return text.size() >= 8 && std::all_of(text.begin(), text.end(), [](QChar character) {
               return (character >= u'a' && character <= u'z') || (character >= u'A' && character <= u'Z');
           });
}

void checkToken(const QString &token)
{
    const qint64 expiry = network::jwtExpiry(token);
    constexpr qint64 now = 1'700'000'000;
    const qint64 delay = network::refreshDelayMs(expiry, now);
    require(delay >= 0);
    require(network::timerIntervalMs(delay) >= 0);
    require(delay == 0 || !network::expiresSoon(expiry, now));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    const QByteArray body(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const QJsonObject object = QJsonDocument::fromJson(body).object();

    parseAlone<model::User>(object);
    parseAlone<model::FSDToken>(object);
    parseAlone<model::UserHistoryEntry>(object);
    parseAlone<model::UserHistory>(object);
    parseAlone<model::UserProfile>(object);
    network::RecordReply<model::UserHistory>::parse(object);
    network::RecordReply<model::UserProfile>::parse(object);
    network::RecordReply<model::RatingList>::parse(object);
    network::parseLegacyIcaoJson(body);

    model::ApiResponse<model::AuthData> reply;
    reply.parse(object);
    checkToken(reply.data.token);
    checkToken(QString::fromUtf8(body));
    // Any bytes as the payload of a well-formed token.
    checkToken(QStringLiteral("e30.") + QString::fromLatin1(body.toBase64(QByteArray::Base64UrlEncoding)) +
               QStringLiteral(".s"));

    const QString logged = network::redactedBody(body, {reply.data.token, reply.data.flushToken});
    require(!logged.contains(QLatin1Char('\n')));
    require(!isPlainWord(reply.data.token) || logged.contains(QLatin1Char('\\')) || !logged.contains(reply.data.token));
    const QString line = network::redactedText(reply.message, {reply.data.token});
    require(!line.contains(QLatin1Char('\n')));
    return 0;
}
