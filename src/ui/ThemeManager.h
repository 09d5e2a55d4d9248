#pragma once

#include <QObject>

namespace tarvo::ui {

/// The style sheet of the widgets (login window, dialogs). The QML pages have colours of their own.
class ThemeManager : public QObject
{
    Q_OBJECT

public:
    enum class Theme
    {
        Dark,
        Light
    };
    Q_ENUM(Theme)

    /// The program's theme; needs the application object.
    static ThemeManager &instance();

    explicit ThemeManager(QObject *parent = nullptr) : QObject(parent) {}

    /// Reads the theme's style sheet and sets it on the application. A file that can't be opened is a warning in the
    /// log, and nothing changes.
    void applyTheme(Theme theme);
    Theme theme() const { return m_theme; }

signals:
    void themeChanged(tarvo::ui::ThemeManager::Theme newTheme);

private:
    Theme m_theme = Theme::Dark;
};

} // namespace tarvo::ui
