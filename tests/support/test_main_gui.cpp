#include "support/SourceFolder.h"
#include "support/TestRegistry.h"

#include <QApplication>
#include <QStandardPaths>

int main(int argc, char **argv)
{
    // No test makes a noise or finds a device of this machine, and all machines are alike.
    qputenv("ALSA_CONFIG_PATH", tarvo::test::sourceFile(QStringLiteral("tests/support/no-sound.conf")).toUtf8());
    qputenv("JACK_NO_START_SERVER", "1");
    qputenv("PULSE_SERVER", "unix:/nonexistent");
    QApplication app(argc, argv);
    QStandardPaths::setTestModeEnabled(true); // nothing that a test writes reaches the user's own folders
    return tarvo::test::runAllTests(argc, argv);
}
