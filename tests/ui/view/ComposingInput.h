#pragma once

#include <QCoreApplication>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <private/qinputmethod_p.h>
#include <qpa/qplatforminputcontext.h>

#include <utility>

namespace tarvo::test {

/// An input method in the middle of a composition, which commits it when it is told to.
class ComposingInput : public QPlatformInputContext
{
public:
    ComposingInput() { QInputMethodPrivate::get(QGuiApplication::inputMethod())->testContext = this; }
    ~ComposingInput() override { QInputMethodPrivate::get(QGuiApplication::inputMethod())->testContext = nullptr; }

    bool isValid() const override { return true; }

    void compose(const QString &text)
    {
        m_text = text;
        QInputMethodEvent event(text, {});
        QCoreApplication::sendEvent(QGuiApplication::focusObject(), &event);
    }

    void commit() override
    {
        QInputMethodEvent event;
        event.setCommitString(std::exchange(m_text, QString()));
        QCoreApplication::sendEvent(QGuiApplication::focusObject(), &event);
    }

private:
    QString m_text;
};

} // namespace tarvo::test
