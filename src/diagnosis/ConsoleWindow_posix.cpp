#include "diagnosis/ConsoleWindow.h"

namespace tarvo::diagnosis {

void openConsole()
{
    // UTF-8, as everywhere.
}

void keepConsole()
{
    // A terminal stays.
}

} // namespace tarvo::diagnosis
