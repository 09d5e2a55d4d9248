#pragma once

#include <QByteArray>

namespace tarvo::ui {

/// Whether a GL of this name ("GL_RENDERER") has no GPU and paints with the processor, as Mesa's llvmpipe does.
bool paintsWithProcessor(const QByteArray &renderer);

/// Lets Qt's software renderer paint the pages where GL would do so with the processor: GL paints the whole window for
/// each figure that changes, the other one the figure. Whoever runs the program can choose by the environment variables
/// QT_QUICK_BACKEND and QSG_RHI_BACKEND. Counts only before the first Quick window.
void chooseSceneGraph();

} // namespace tarvo::ui
