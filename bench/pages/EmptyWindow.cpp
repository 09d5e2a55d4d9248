#include "pages/Role.h"
#include "pages/WindowsUnderTest.h"

#include <QMainWindow>
#include <QQuickView>
#include <QTimer>

#include <atomic>

namespace tarvo::bench {

int runEmptyWindow()
{
    QMainWindow window;
    auto *view = new QQuickView;
    view->setColor(Qt::transparent);
    window.setCentralWidget(QWidget::createWindowContainer(view, &window)); // takes the view
    window.resize(1280, 800);
    window.show();
    std::atomic<int> frames = 0; // swapped in a thread of Qt's own, maybe
    QObject::connect(
        view, &QQuickWindow::frameSwapped, view, [&frames] { ++frames; }, Qt::DirectConnection);
    QTimer paint;
    QObject::connect(&paint, &QTimer::timeout, view, &QQuickWindow::update);
    return answerQuestions([&](const QByteArray &question) {
        if (question == "frames")
            return QByteArray::number(frames.load());
        const int perSecond = question.mid(question.indexOf(' ') + 1).toInt();
        perSecond > 0 ? paint.start(1000 / perSecond) : paint.stop();
        return QByteArray("done");
    });
}

} // namespace tarvo::bench
