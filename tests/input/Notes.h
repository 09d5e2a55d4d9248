#pragma once

#include "input/InputSource.h"

#include <QString>
#include <QStringList>

namespace tarvo::test {

/// Writes down what a source tells.
class Notes final : public input::InputListener
{
public:
    void onKeyDown(int virtualKey, bool injected) override
    {
        m_lines << u"key %1 down%2"_qs.arg(virtualKey).arg(injected ? u", injected"_qs : QString());
    }
    void onKeyUp(int virtualKey) override { m_lines << u"key %1 up"_qs.arg(virtualKey); }
    void onButtonDown(int mask) override { m_lines << u"button %1 down"_qs.arg(mask); }
    void onButtonUp(int mask) override { m_lines << u"button %1 up"_qs.arg(mask); }
    void onSilence() override { m_lines << u"silence"_qs; }

    const QStringList &lines() const { return m_lines; }

private:
    QStringList m_lines;
};

} // namespace tarvo::test
