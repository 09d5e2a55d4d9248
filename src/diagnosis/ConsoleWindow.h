#pragma once

namespace tarvo::diagnosis {

/// Prepares the console for Chinese text.
void openConsole();
/// Keeps a window that the system has opened for this program alone in sight until a key is pressed.
void keepConsole();

} // namespace tarvo::diagnosis
