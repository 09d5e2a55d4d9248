// One start on the data root that is its first argument: says what it found, and then, when it is the first one, each
// time that it is wanted, until its input closes. With "busy" behind the root it never comes to its event loop.
// "patient" waits for ever for the other one's answer.
#include "app/SingleInstance.h"

#include <QCoreApplication>

#include <chrono>
#include <cstdio>
#include <thread>

using tarvo::app::SingleInstance;

namespace {

void say(const char *word)
{
    std::puts(word);
    std::fflush(stdout);
}

void untilInputCloses()
{
    while (std::getchar() != EOF) {
    }
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    SingleInstance instance(arguments.at(1));
    const bool isPatient = arguments.contains(QStringLiteral("patient"));
    switch (instance.start(isPatient ? std::chrono::minutes(1) : std::chrono::milliseconds(300))) {
    case SingleInstance::Outcome::Shown:
        say("shown");
        return 0;
    case SingleInstance::Outcome::NoAnswer:
        say("no answer");
        return 1;
    case SingleInstance::Outcome::First:
        break;
    }
    say("first");
    QObject::connect(&instance, &SingleInstance::wanted, [] { say("wanted"); });
    if (arguments.contains(QStringLiteral("busy"))) {
        untilInputCloses();
        return 0;
    }
    std::thread input([] {
        untilInputCloses();
        QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    });
    QCoreApplication::exec();
    input.join();
    return 0;
}
