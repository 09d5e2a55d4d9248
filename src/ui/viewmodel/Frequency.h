#pragma once

#include <QString>

namespace tarvo::ui {

/// "118.025" for 118025 kHz.
inline QString megahertz(quint32 kilohertz)
{
    return QString::number(kilohertz / 1000.0, 'f', 3);
}

} // namespace tarvo::ui
