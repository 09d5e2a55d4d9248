#pragma once

#include <functional>
#include <memory>

class QObject;

namespace tarvo::test {

/// Makes one test object; called right before its tests run and destroyed right after.
using TestFactory = std::function<std::unique_ptr<QObject>()>;

/// Adds a test class to the program. Returns true, so that it can initialise a constant.
bool registerTest(TestFactory factory);

/// Runs every registered class in the order of registration, or those that the command line names. The other arguments
/// go to Qt Test. Returns the number of failed classes, at most 127; a name that no class has counts as failed.
int runAllTests(int argc, char **argv);

} // namespace tarvo::test

/// Stands once in the .cpp file of each test class, at file scope, followed by the file's .moc include.
#define TARVO_TEST(Class)                                                                                              \
    static const bool registered##Class =                                                                              \
        tarvo::test::registerTest([]() -> std::unique_ptr<QObject> { return std::make_unique<Class>(); });
