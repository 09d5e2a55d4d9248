#pragma once

#include "app/SingleInstance.h"

namespace tarvo::app {

/// The exit code of a start that found another copy: 0 when that has come forward. When it gave no answer the pilot is
/// told, and the code is 1. Needs the QApplication.
int leaveToOther(SingleInstance::Outcome outcome);

} // namespace tarvo::app
