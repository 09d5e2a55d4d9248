// The smallest program that shows a widget, for comparison.
#include "startup/FirstPaint.h"

#include <QApplication>
#include <QWidget>

int main(int argc, char **argv)
{
    const QApplication toolkit(argc, argv);
    QWidget window;
    window.resize(1000, 700);
    const FirstPaint end(window);
    window.show();
    return QApplication::exec();
}
