// Starts many look-ups of the name that its argument is, and ends under the last.
#include "fsd/NameResolver.h"

#include <QCoreApplication>

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    tarvo::fsd::NameResolver resolver;
    for (int i = 0; i < 50; ++i)
        resolver.lookUp(QString::fromLocal8Bit(argv[argc - 1]), [](const QString &) {});
    QMetaObject::invokeMethod(
        &resolver, [] { QCoreApplication::exit(); }, Qt::QueuedConnection);
    return resolver.resolve(QString::fromLocal8Bit(argv[argc - 1])) ? 1 : 0;
}
