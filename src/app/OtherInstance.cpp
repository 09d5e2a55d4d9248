#include "app/OtherInstance.h"

#include "ui/ErrorDialog.h"
#include "ui/ThemeManager.h"

#include <QCoreApplication>

namespace tarvo::app {

int leaveToOther(SingleInstance::Outcome outcome)
{
    if (outcome == SingleInstance::Outcome::Shown)
        return 0;
    ui::ThemeManager::instance().applyTheme(ui::ThemeManager::Theme::Light);
    ui::ErrorDialog dialog(QCoreApplication::translate("OtherInstance", "TARVO Client 已在运行"),
                           QCoreApplication::translate("OtherInstance",
                                                       "已在运行的程序没有响应。请稍候再试；若仍无响应，"
                                                       "请先结束该进程，再重新启动。"));
    dialog.exec();
    return 1;
}

} // namespace tarvo::app
