#include "input/NoInputSource.h"

#include <QDebug>

namespace tarvo::input {

void NoInputSource::start(InputListener &)
{
    qWarning() << "PttHandler: this desktop tells of no keys and mouse buttons; joysticks work";
}

QString NoInputSource::keyName(int) const
{
    return {};
}

} // namespace tarvo::input
