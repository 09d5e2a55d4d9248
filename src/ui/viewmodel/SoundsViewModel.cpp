#include "ui/viewmodel/SoundsViewModel.h"

#include "StateFile.h"

#include <QUrl>

#include <algorithm>
#include <chrono>

namespace tarvo::ui {

namespace {

constexpr std::chrono::milliseconds signLasts{2500}; ///< long enough to be looked for

struct SoundSign
{
    const char *file;
    const char *text;
    const char *tone;
};

constexpr SoundSign signs[] = {
    {"manager.mp3", QT_TRANSLATE_NOOP("tarvo::ui::SoundsViewModel", "新消息"), "pending"},
    {"connect.mp3", QT_TRANSLATE_NOOP("tarvo::ui::SoundsViewModel", "网络已连接"), "good"},
    {"disconnect.mp3", QT_TRANSLATE_NOOP("tarvo::ui::SoundsViewModel", "网络已断开"), "failed"},
};

} // namespace

SoundsViewModel::SoundsViewModel(StateFile &state, QObject *parent) : QObject(parent), m_state(state), m_signTimer(this)
{
    m_signTimer.setObjectName(QStringLiteral("signTimer"));
    m_signTimer.setSingleShot(true);
    connect(&m_signTimer, &QTimer::timeout, this, [this] { setSign({}, {}); });
}

bool SoundsViewModel::isOn() const
{
    return m_state.get(state::soundsOn);
}

void SoundsViewModel::setOn(bool on)
{
    if (on == isOn())
        return;
    m_state.set(state::soundsOn, on);
    emit changed();
}

int SoundsViewModel::volume() const
{
    return std::clamp(m_state.get(state::soundsVolume), 0, 100);
}

void SoundsViewModel::setVolume(int percent)
{
    const int wanted = std::clamp(percent, 0, 100);
    if (wanted == volume())
        return;
    m_state.set(state::soundsVolume, wanted);
    emit changed();
}

void SoundsViewModel::showSign(const QUrl &sound)
{
    const QString file = sound.fileName();
    const auto *found =
        std::ranges::find_if(signs, [&](const SoundSign &sign) { return file == QLatin1String(sign.file); });
    if (found == std::end(signs))
        return;
    setSign(tr(found->text), QLatin1String(found->tone));
    m_signTimer.start(signLasts);
    emit signShown();
}

void SoundsViewModel::setSign(const QString &text, const QString &tone)
{
    if (text == m_signText)
        return;
    m_signText = text;
    m_signTone = tone;
    emit signChanged();
}

} // namespace tarvo::ui
