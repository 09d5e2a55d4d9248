#include "ui/ThemeManager.h"

#include <QApplication>
#include <QDebug>
#include <QFile>

namespace tarvo::ui {

ThemeManager &ThemeManager::instance()
{
    static ThemeManager manager;
    return manager;
}

void ThemeManager::applyTheme(Theme theme)
{
    const QString path = theme == Theme::Dark ? QStringLiteral(":/resources/theme/dark.qss")
                                              : QStringLiteral(":/resources/theme/light.qss");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        qWarning() << "Failed to load stylesheet from:" << path;
        return;
    }
    qApp->setStyleSheet(QString::fromUtf8(file.readAll()));
    m_theme = theme;
    emit themeChanged(theme);
}

} // namespace tarvo::ui
