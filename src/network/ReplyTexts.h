#pragma once

#include <QCoreApplication>
#include <QString>

namespace tarvo::network {

struct ReplyOutcome;

/// The texts for the user that tell why a sign-in or a refresh failed.
struct ReplyTexts
{
    Q_DECLARE_TR_FUNCTIONS(ReplyTexts)

public:
    /// A login that the service refused with `code`; an unknown code is named.
    static QString loginCode(const QString &code);
    /// A login whose reply had no body.
    static QString loginError(const ReplyOutcome &outcome);
    /// A refresh that ended in a network error.
    static QString refreshError(const ReplyOutcome &outcome);
    /// A refresh without a token in the reply and without the service's own message.
    static QString refreshWithoutToken();
    static QString historyFailed();
    static QString profileFailed();
};

} // namespace tarvo::network
