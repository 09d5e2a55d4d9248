#include "ui/viewmodel/SoundsViewModel.h"

#include "StateFile.h"

#include <QUrl>

#include <algorithm>
#include <chrono>

namespace tarvo::ui {

namespace {

constexpr std::chrono::milliseconds signLasts{2500};  ///< long enough to be looked for
constexpr std::chrono::milliseconds volumeRests{500}; ///< longer than a held key takes to repeat

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

SoundsViewModel::SoundsViewModel(StateFile &state, QObject *parent)
    : QObject(parent),
      m_state(state),
      m_volume(std::clamp(state.get(state::soundsVolume), 0, 100)),
      m_saveTimer(this),
      m_signTimer(this)
{
    m_saveTimer.setObjectName(QStringLiteral("saveTimer"));
    m_saveTimer.setSingleShot(true);
    connect(&m_saveTimer, &QTimer::timeout, this, &SoundsViewModel::saveVolume);
    m_signTimer.setObjectName(QStringLiteral("signTimer"));
    m_signTimer.setSingleShot(true);
    connect(&m_signTimer, &QTimer::timeout, this, [this] { setSign({}, {}); });
}

SoundsViewModel::~SoundsViewModel()
{
    if (m_saveTimer.isActive())
        saveVolume();
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

void SoundsViewModel::setVolume(int percent)
{
    const int wanted = std::clamp(percent, 0, 100);
    if (wanted == m_volume)
        return;
    m_volume = wanted;
    m_saveTimer.start(volumeRests);
    emit changed();
}

void SoundsViewModel::saveVolume()
{
    m_state.set(state::soundsVolume, m_volume);
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
