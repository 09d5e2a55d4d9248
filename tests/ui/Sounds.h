#pragma once

#include <QUrl>

namespace tarvo::test {

inline const QUrl connectSound(u"qrc:/resources/sounds/connect.mp3"_qs);
inline const QUrl disconnectSound(u"qrc:/resources/sounds/disconnect.mp3"_qs);
inline const QUrl messageSound(u"qrc:/resources/sounds/manager.mp3"_qs);

} // namespace tarvo::test
