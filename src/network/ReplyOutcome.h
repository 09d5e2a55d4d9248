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

// The longest bodies that are read, in bytes: more would hold the window while it is looked through. Honest replies
// have a few thousand, a history of 1,000 flights 150,000.
inline constexpr qint64 longestTokenReply = 64 * 1024;
inline constexpr qint64 longestRecordReply = 1024 * 1024;

/// Breaks `reply` off once more than `longest` bytes of body have arrived: it counts as a network error without body.
void limitBody(QNetworkReply *reply, qint64 longest);

/// Takes what a finished reply holds.
ReplyOutcome takeOutcome(QNetworkReply &reply);

} // namespace tarvo::network
