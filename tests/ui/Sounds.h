#pragma once

#include <QUrl>

namespace tarvo::test {

inline const QUrl connectSound(QStringLiteral("qrc:/resources/sounds/connect.mp3"));
inline const QUrl disconnectSound(QStringLiteral("qrc:/resources/sounds/disconnect.mp3"));
inline const QUrl messageSound(QStringLiteral("qrc:/resources/sounds/manager.mp3"));

} // namespace tarvo::test
