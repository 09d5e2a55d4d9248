#include "network/ReplyOutcome.h"

#include <QNetworkRequest>
#include <QVariant>

namespace tarvo::network {

namespace {
constexpr char tooLongProperty[] = "tarvoBodyTooLong";
} // namespace

bool ReplyOutcome::timedOut() const
{
    return error == QNetworkReply::TimeoutError || error == QNetworkReply::OperationCanceledError;
}

void limitBody(QNetworkReply *reply, qint64 longest)
{
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [reply, longest] {
        if (reply->bytesAvailable() <= longest)
            return;
        reply->setProperty(tooLongProperty, true); // abort() alone would look like a time-out
        reply->abort();
    });
}

ReplyOutcome takeOutcome(QNetworkReply &reply)
{
    ReplyOutcome outcome{.error = reply.error(),
                         .errorString = reply.errorString(),
                         .httpStatus = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(),
                         .url = reply.request().url(),
                         .body = {}};
    if (reply.property(tooLongProperty).toBool()) {
        outcome.error = QNetworkReply::UnknownContentError;
        outcome.errorString = QStringLiteral("The reply is too long");
    } else if (reply.isReadable()) {
        outcome.body = reply.readAll();
    }
    return outcome;
}

} // namespace tarvo::network
