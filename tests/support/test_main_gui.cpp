#include "support/TestRegistry.h"

#include <QApplication>
#include <QStandardPaths>

int main(int argc, char **argv)
{
    qputenv("PULSE_SERVER", "unix:/nonexistent"); // no test makes a noise, and all machines are alike
    QApplication app(argc, argv);
    QStandardPaths::setTestModeEnabled(true); // nothing that a test writes reaches the user's own folders
    return tarvo::test::runAllTests(argc, argv);
}
