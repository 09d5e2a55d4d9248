#include "ui/viewmodel/LeaveQuestion.h"

namespace tarvo::ui {

LeaveTexts leaveTexts(Leaving what, const QString &callsign)
{
    const QString online = LeaveQuestion::tr("%1 正在线上。").arg(callsign);
    switch (what) {
    case Leaving::Disconnect:
        return {LeaveQuestion::tr("断开网络连接？"),
                online + LeaveQuestion::tr("断开后，其他飞行员和管制员将看不到您的航空器。"),
                LeaveQuestion::tr("断开连接")};
    case Leaving::LogOut:
        return {LeaveQuestion::tr("退出登录？"),
                online + LeaveQuestion::tr("退出登录会断开网络连接，并清除保存的密码。"),
                LeaveQuestion::tr("退出登录")};
    case Leaving::Close:
        return {LeaveQuestion::tr("关闭客户端？"), online + LeaveQuestion::tr("关闭客户端会断开网络连接。"),
                LeaveQuestion::tr("关闭")};
    }
    return {};
}

void LeaveQuestion::setOnline(const QString &callsign)
{
    m_callsign = callsign;
    if (callsign.isEmpty() && m_open)
        shut();
}

void LeaveQuestion::ask(Leaving what)
{
    if (!mustAsk()) {
        confirm(what);
        return;
    }
    m_what = what;
    m_texts = leaveTexts(what, m_callsign);
    m_open = true;
    emit openChanged();
}

void LeaveQuestion::accept(bool neverAgain)
{
    if (!m_open)
        return;
    m_neverAgain = neverAgain;
    const Leaving what = m_what;
    shut();
    confirm(what);
}

void LeaveQuestion::reject()
{
    if (m_open)
        shut();
}

void LeaveQuestion::shut()
{
    m_open = false;
    emit openChanged();
}

void LeaveQuestion::confirm(Leaving what)
{
    switch (what) {
    case Leaving::Disconnect:
        emit disconnectConfirmed();
        break;
    case Leaving::LogOut:
        emit logOutConfirmed();
        break;
    case Leaving::Close:
        emit closeConfirmed();
        break;
    }
}

} // namespace tarvo::ui
