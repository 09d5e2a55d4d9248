// Opens the log file named by its argument and says when that went well.
#include "Logging.h"

#include <QString>

#include <cstdio>

int main(int argc, char **argv)
{
    if (argc != 2)
        return 2;
    tarvo::logging::openLogFile(QString::fromLocal8Bit(argv[1]));
    std::puts("opened");
    return 0;
}
