// Starts many look-ups of the name that its argument is, and ends under the last, which ends with it.
#include "fsd/NameResolver.h"

#include <QCoreApplication>
#include <QTimer>

using tarvo::fsd::NameResolver;

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    const QString name = QString::fromLocal8Bit(argv[argc - 1]);
    NameResolver resolver;
    for (int i = 0; i < 50; ++i)
        resolver.lookUp(name, [](const QString &) {});
    bool hasEnded = false;
    const auto end = [&] {
        QCoreApplication::exit();
        QObject::connect(&resolver, &NameResolver::requestEnded, [&hasEnded] { hasEnded = true; });
    };
    QTimer::singleShot(20, &resolver, end); // by then the name server has been asked
    return !resolver.resolve(name) && hasEnded ? 0 : 1;
}
