#include "support/TestRegistry.h"

#include <QDebug>
#include <QMetaMethod>
#include <QObject>
#include <QStorageInfo>
#include <QStringList>
#include <QTest>

#include <algorithm>
#include <iterator>
#include <vector>

namespace tarvo::test {

namespace {
std::vector<TestFactory> &factories()
{
    static std::vector<TestFactory> list;
    return list;
}

/// Takes the class names out of the arguments. A class begins with a capital letter, a test function never does.
QStringList takeClassNames(QStringList &arguments)
{
    const auto isClassName = [](const QString &word) { return !word.isEmpty() && word.front().isUpper(); };
    QStringList names;
    std::copy_if(arguments.cbegin() + 1, arguments.cend(), std::back_inserter(names), isClassName);
    arguments.erase(std::remove_if(arguments.begin() + 1, arguments.end(), isClassName), arguments.end());
    return names;
}

bool isTestFunction(const QMetaMethod &method)
{
    static const QList<QByteArray> others{"initTestCase", "cleanupTestCase", "init", "cleanup"};
    return method.methodType() == QMetaMethod::Slot && method.access() == QMetaMethod::Private &&
           method.parameterCount() == 0 && !method.name().endsWith("_data") && !others.contains(method.name());
}

/// The test functions of a class but for those that are left out.
QStringList functionsBut(const QStringList &leftOut, const QMetaObject &object)
{
    QStringList functions;
    for (int i = object.methodOffset(); i < object.methodCount(); ++i) {
        const QString name = QString::fromLatin1(object.method(i).name());
        if (isTestFunction(object.method(i)) &&
            !leftOut.contains(QString::fromLatin1(object.className()) + QStringLiteral("::") + name))
            functions.append(name);
    }
    return functions;
}

/// Runs all of a class but what is left out; its number of failures.
int runBut(const QStringList &leftOut, QObject &object, const QStringList &arguments)
{
    if (leftOut.isEmpty())
        return QTest::qExec(&object, arguments);
    const QStringList functions = functionsBut(leftOut, *object.metaObject());
    return functions.isEmpty() ? 0 : QTest::qExec(&object, arguments + functions);
}

/// The settings are brought to the disk with every change, which is what a test would wait for most of its time.
void keepTemporaryFilesInMemory()
{
    constexpr qint64 roomEnough = 1'000'000'000; // bytes
    const QStorageInfo memory(QStringLiteral("/dev/shm"));
    if (!qEnvironmentVariableIsSet("TMPDIR") && memory.isValid() && memory.bytesAvailable() > roomEnough)
        qputenv("TMPDIR", memory.rootPath().toLocal8Bit());
}
} // namespace

bool registerTest(TestFactory factory)
{
    factories().push_back(std::move(factory));
    return true;
}

int runAllTests(int argc, char **argv)
{
    keepTemporaryFilesInMemory();
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    QStringList wanted = takeClassNames(arguments);
    // From the second class of a program on, Qt 6.4's own handler would print "Received signal" for ever.
    arguments.append(QStringLiteral("-nocrashhandler"));
    const bool all = wanted.isEmpty();
    // Such as "ClassTest::aFunction", with blanks between: what can't be where the program runs.
    const QStringList leftOut = qEnvironmentVariable("TARVO_LEFT_OUT").split(u' ', Qt::SkipEmptyParts);
    int failedClasses = 0;
    for (const TestFactory &make : factories()) {
        const std::unique_ptr<QObject> object = make();
        const QString name = QString::fromLatin1(object->metaObject()->className());
        if ((all && runBut(leftOut, *object, arguments) != 0) ||
            (wanted.removeAll(name) > 0 && QTest::qExec(object.get(), arguments) != 0))
            ++failedClasses;
    }
    for (const QString &name : wanted)
        qCritical() << "No test class is called" << name;
    return std::min(failedClasses + static_cast<int>(wanted.size()), 127);
}

} // namespace tarvo::test
