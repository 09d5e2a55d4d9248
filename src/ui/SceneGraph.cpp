#include "ui/SceneGraph.h"

#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QQuickWindow>

#include <algorithm>
#include <iterator>
#include <utility>

namespace tarvo::ui {

namespace {

constexpr const char *processorRenderers[] = {"llvmpipe", "softpipe", "swrast", "Software Rasterizer"};

bool isChosenAlready()
{
    return qEnvironmentVariableIsSet("QT_QUICK_BACKEND") || qEnvironmentVariableIsSet("QSG_RHI_BACKEND");
}

/// Elsewhere Qt doesn't paint with GL.
bool mayPaintWithGl()
{
    const QString platform = QGuiApplication::platformName();
    return platform == QLatin1StringView("xcb") || platform.startsWith(QLatin1StringView("wayland"));
}

/// Empty without GL.
QByteArray glRenderer()
{
    QOffscreenSurface surface;
    surface.create();
    QOpenGLContext context;
    if (!context.create() || !context.makeCurrent(&surface))
        return {};
    QByteArray name = reinterpret_cast<const char *>(context.functions()->glGetString(GL_RENDERER));
    context.doneCurrent();
    return name;
}

} // namespace

bool paintsWithProcessor(const QByteArray &renderer)
{
    return std::any_of(std::begin(processorRenderers), std::end(processorRenderers),
                       [&renderer](const char *name) { return renderer.contains(name); });
}

void chooseSceneGraph()
{
    static bool done = false; // for the process
    if (std::exchange(done, true) || isChosenAlready() || !mayPaintWithGl() || !paintsWithProcessor(glRenderer()))
        return;
    qInfo("No GPU: the pages are painted by Qt's software renderer");
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
}

} // namespace tarvo::ui
