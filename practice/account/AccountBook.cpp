#include "practice/account/AccountBook.h"

#include <QDateTime>

#include <algorithm>

namespace tarvo::practice {

namespace {
/// A past session that began so many days ago.
struct PastSession
{
    const char16_t *callsign;
    int daysAgo;
    int startHour; ///< UTC
    int minutes;
};

constexpr PastSession pastFlights[] = {
    {u"CCA1331", 1, 11, 134}, {u"CCA1331", 2, 12, 128}, {u"CES5138", 4, 1, 141},  {u"CSN3162", 7, 9, 187},
    {u"BTARVO", 9, 6, 42},    {u"CCA981", 13, 5, 803},  {u"CHH7237", 20, 13, 96}, {u"CCA1519", 34, 8, 131},
};
constexpr PastSession pastControlling[] = {
    {u"ZBAA_TWR", 5, 12, 118},
    {u"ZBAA_GND", 16, 11, 94},
};

template <std::size_t N>
QList<model::UserHistoryEntry> entriesOf(const PastSession (&sessions)[N], const QDate &today)
{
    QList<model::UserHistoryEntry> list;
    for (const PastSession &past : sessions) {
        model::UserHistoryEntry entry;
        entry.callsign = QString::fromUtf16(past.callsign);
        entry.startTime = QDateTime(today.addDays(-past.daysAgo), QTime(past.startHour, 5), Qt::UTC);
        entry.onlineTime = past.minutes * 60;
        entry.endTime = entry.startTime.addSecs(entry.onlineTime);
        list.append(entry);
    }
    return list;
}

/// Names are Latin text: they travel on the FSD wire, whose text is Latin-1.
Account pilot(qint64 cid, const QString &name, int pilotHours, int atcHours, int rating)
{
    Account account;
    account.password = QStringLiteral("practice");
    account.user.id = cid - 1000;
    account.user.cid = cid;
    account.user.username = name;
    account.user.email = QStringLiteral("%1@practice.invalid").arg(cid);
    account.user.qq = 10'000'000 + cid;
    account.user.rating = rating;
    account.user.totalPilotTime = pilotHours * 3600LL + 1260;
    account.user.totalAtcTime = atcHours * 3600LL + 2040;
    account.user.registerTime = QDateTime(QDate(2022, 3, 18), QTime(12, 30), Qt::UTC);
    account.history.totalPilotTime = account.user.totalPilotTime;
    account.history.totalAtcTime = account.user.totalAtcTime;
    return account;
}
} // namespace

AccountBook::AccountBook()
{
    const QDate today = QDateTime::currentDateTimeUtc().date();
    Account first = pilot(1001, QStringLiteral("Lin Xiaozhou"), 312, 46, 3);
    first.history.pilots = entriesOf(pastFlights, today);
    first.history.controllers = entriesOf(pastControlling, today);
    add(first);
    add(pilot(1002, QStringLiteral("Chen Yuhang"), 528, 12, 2));
    add(pilot(1003, QStringLiteral("Zhao Mingyue"), 97, 205, 5));
}

void AccountBook::add(const Account &account)
{
    m_accounts.insert(account.user.cid, account);
}

const Account *AccountBook::find(qint64 cid) const
{
    const auto found = m_accounts.constFind(cid);
    return found == m_accounts.constEnd() ? nullptr : &*found;
}

const Account *AccountBook::find(const QString &name) const
{
    bool number = false;
    const qint64 cid = name.toLongLong(&number);
    if (const Account *byCid = number ? find(cid) : nullptr)
        return byCid;
    for (const Account &account : m_accounts) {
        if (account.user.username.compare(name, Qt::CaseInsensitive) == 0)
            return &account;
    }
    return nullptr;
}

bool AccountBook::passwordFits(const QString &name, const QString &password) const
{
    const Account *account = find(name);
    return account && !password.isEmpty() && account->password == password;
}

model::RatingList AccountBook::ratings() const
{
    model::RatingList list;
    for (const Account &account : m_accounts) {
        const model::User &user = account.user;
        list.pilots.append({user.cid, user.username, user.avatarUrl, user.totalPilotTime});
        list.controllers.append({user.cid, user.username, user.avatarUrl, user.totalAtcTime});
    }
    const auto better = [](const model::RatingEntry &a, const model::RatingEntry &b) { return a.time > b.time; };
    std::sort(list.pilots.begin(), list.pilots.end(), better);
    std::sort(list.controllers.begin(), list.controllers.end(), better);
    return list;
}

} // namespace tarvo::practice
