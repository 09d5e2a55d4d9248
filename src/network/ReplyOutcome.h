#pragma once

#include <QByteArray>
#include <QNetworkReply>
#include <QString>
#include <QUrl>

namespace tarvo::network {

/// What is left of a finished reply.
struct ReplyOutcome
{
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
    QString errorString;
    int httpStatus = 0; ///< 0 when no answer arrived
    QUrl url;           ///< as requested
    QByteArray body;

    bool ok() const { return error == QNetworkReply::NoError; }
    /// No answer in time. The transfer time-out shows as a cancelled operation.
    bool timedOut() const;
};

/// The longest body that is read. A reply that exceeds it is broken off and counts as a network error without body.
inline constexpr qint64 longestReplyBody = 8 * 1024 * 1024;

/// Breaks `reply` off once more than `longestReplyBody` bytes of body have arrived.
void limitBody(QNetworkReply *reply);

/// Takes what a finished reply holds.
ReplyOutcome takeOutcome(QNetworkReply &reply);

} // namespace tarvo::network
