#include "ui/viewmodel/Tour.h"

#include "StateFile.h"

namespace tarvo::ui {

void Tour::begin()
{
    if (m_state.get(state::tourSeen))
        return;
    m_state.set(state::tourSeen, true);
    setStep(1);
}

void Tour::modePicked()
{
    if (m_step == 1)
        setStep(2);
}

void Tour::next()
{
    if (m_step > 0)
        setStep(m_step < steps ? m_step + 1 : 0);
}

void Tour::end()
{
    setStep(0);
}

void Tour::setStep(int step)
{
    if (step == m_step)
        return;
    m_step = step;
    emit stepChanged();
}

} // namespace tarvo::ui
