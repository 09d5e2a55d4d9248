#include "diagnosis/ConsoleWindow.h"

#include <array>
#include <cstdio>

#include <windows.h>

namespace tarvo::diagnosis {

void openConsole()
{
    SetConsoleOutputCP(CP_UTF8);
}

void keepConsole()
{
    std::array<DWORD, 2> processes{};
    if (GetConsoleProcessList(processes.data(), static_cast<DWORD>(processes.size())) == 1) // a double click
        std::getchar();
}

} // namespace tarvo::diagnosis
