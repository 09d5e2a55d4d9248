#pragma once

class QWidget;

namespace tarvo::ui {

/// Asks the window system for its blurred or tinted window background. Cosmetic: does nothing where there is none.
/// To be called before the window is shown.
void applyWindowBackdrop(QWidget &window);

} // namespace tarvo::ui
