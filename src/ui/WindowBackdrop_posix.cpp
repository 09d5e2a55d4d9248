#include "ui/WindowBackdrop.h"

namespace tarvo::ui {

void applyWindowBackdrop(QWidget &) {}

} // namespace tarvo::ui
