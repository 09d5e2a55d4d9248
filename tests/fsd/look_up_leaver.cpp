// Starts many look-ups of the name that its argument is, and ends.
#include "fsd/NameResolver.h"

#include <QCoreApplication>

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    tarvo::fsd::NameResolver resolver;
    for (int i = 0; i < 50; ++i)
        resolver.lookUp(QString::fromLocal8Bit(argv[argc - 1]), [](const QString &) {});
    QCoreApplication::processEvents();
    return 0;
}
