#include "ui/viewmodel/MessageChannels.h"

#include "common/Callsign.h"

#include <QCoreApplication>

namespace tarvo::ui::channels {

namespace {
struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(MessageChannels)
};
} // namespace

QString server()
{
    return common::serverCallsign;
}

QString radio()
{
    return QStringLiteral("RADIO");
}

QString privateOverview()
{
    return QStringLiteral("PRIVATE");
}

QString broadcast()
{
    return QStringLiteral("BROADCAST");
}

QString wallop()
{
    return QStringLiteral("WALLOP");
}

QString selcal()
{
    return QStringLiteral("SELCAL");
}

QString all()
{
    return QStringLiteral("ALL");
}

QStringList fixed()
{
    return {server(), radio(), privateOverview(), broadcast(), wallop(), selcal()};
}

QString label(const QString &key)
{
    if (key == server())
        return Texts::tr("服务器");
    if (key == radio())
        return Texts::tr("无线电");
    if (key == privateOverview())
        return Texts::tr("私聊");
    if (key == broadcast())
        return Texts::tr("广播");
    if (key == wallop() || key == selcal())
        return key;
    return Texts::tr("私聊 %1").arg(key);
}

bool canBeSession(const QString &callsign)
{
    const bool somebody = !callsign.isEmpty() && callsign.size() <= common::longestCallsign;
    const bool many = callsign.startsWith(u'@') || callsign.startsWith(u'*');
    const bool word = callsign == all() || callsign == QLatin1String("COM1") || callsign == QLatin1String("COM2") ||
                      fixed().contains(callsign);
    return somebody && !many && !word;
}

} // namespace tarvo::ui::channels
