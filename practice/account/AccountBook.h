#pragma once

#include "model/AccountModels.h"
#include "model/RatingList.h"

#include <QHash>

namespace tarvo::practice {

/// One account with all that the service tells of it.
struct Account
{
    model::User user;
    QString password;
    model::UserHistory history;
};

/// The accounts of the practice network. It opens with the pilots 1001 to 1003, all with the password "practice".
class AccountBook
{
public:
    AccountBook();

    /// Adds an account under its user's CID, or replaces it.
    void add(const Account &account);
    /// Null when there is none. `name` is the CID as text, or the user name.
    const Account *find(const QString &name) const;
    const Account *find(qint64 cid) const;
    /// True when the account exists and the password is its own.
    bool passwordFits(const QString &name, const QString &password) const;
    /// The hours of everybody, best first.
    model::RatingList ratings() const;

private:
    QHash<qint64, Account> m_accounts;
};

} // namespace tarvo::practice
