#include "support/TestRegistry.h"

#include <QCoreApplication>
#include <QStandardPaths>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QStandardPaths::setTestModeEnabled(true); // nothing that a test writes reaches the user's own folders
    return tarvo::test::runAllTests(argc, argv);
}
