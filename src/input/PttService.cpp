#include "input/PttService.h"

#include "input/MouseMask.h"
#include "input/PttHandler.h"

#include <QStringList>

namespace tarvo::input {

PttService::PttService(PttHandler &handler, QObject *parent) : QObject(parent), m_handler(handler)
{
    connect(&m_handler, &PttHandler::activeChanged, this, &PttService::activeChanged);
    connect(&m_handler, &PttHandler::listeningChanged, this, &PttService::listeningChanged);
    connect(&m_handler, &PttHandler::bindingCaptured, this, &PttService::onBindingCaptured);
}

PttService::~PttService()
{
    m_handler.disconnect(this);
    m_handler.stopListening();
    m_handler.clearBinding();
}

QString PttService::boundKeyName() const
{
    const auto binding = parsePttKey(m_key);
    if (!binding)
        return {};
    switch (binding->type) {
    case PttBinding::Type::Keyboard:
        return keyName(binding->code);
    case PttBinding::Type::Mouse:
        return buttonName(binding->code);
    case PttBinding::Type::Joystick:
        return tr("手柄 %1 按钮 %2").arg(binding->joystick).arg(binding->code);
    }
    return {};
}

QString PttService::keyName(int virtualKey) const
{
    QString name = m_handler.keyName(virtualKey);
    if (!name.isEmpty())
        return name;
    const QString code = QString::number(static_cast<quint32>(virtualKey), 16).toUpper();
    return tr("键 0x%1").arg(code.rightJustified(2, u'0'));
}

QString PttService::buttonName(int mask)
{
    switch (mask) {
    case LeftButton:
        return tr("鼠标左键");
    case RightButton:
        return tr("鼠标右键");
    case MiddleButton:
        return tr("鼠标中键");
    case FirstSideButton:
        return tr("鼠标侧键1");
    case SecondSideButton:
        return tr("鼠标侧键2");
    default:
        return tr("鼠标键 %1").arg(mask);
    }
}

PttKey PttService::normalizeKey(const QString &text)
{
    for (const QLatin1String start : {QLatin1String("kb:"), QLatin1String("ms:"), QLatin1String("js:")}) {
        if (text.startsWith(start, Qt::CaseInsensitive))
            return text;
    }
    return {};
}

void PttService::setBoundKey(const PttKey &serialized)
{
    const auto binding = parsePttKey(serialized);
    if (!binding) {
        clearBinding();
        return;
    }
    m_key = serialized;
    m_handler.setBinding(*binding);
    emit boundKeyChanged(m_key);
}

void PttService::clearBinding()
{
    m_key.clear();
    m_handler.clearBinding();
    emit boundKeyChanged(m_key);
}

void PttService::startListening()
{
    m_handler.startListening();
}

void PttService::stopListening()
{
    m_handler.stopListening();
}

void PttService::onBindingCaptured(const PttBinding &binding)
{
    m_key = normalizeKey(pttKeyOf(binding));
    emit boundKeyChanged(m_key);
    emit keyCaptured(m_key);
}

} // namespace tarvo::input
