#include "support/TestRegistry.h"

#include <QObject>
#include <QTest>

#include <algorithm>
#include <vector>

namespace tarvo::test {

namespace {
std::vector<TestFactory> &factories()
{
    static std::vector<TestFactory> list;
    return list;
}
} // namespace

bool registerTest(TestFactory factory)
{
    factories().push_back(std::move(factory));
    return true;
}

int runAllTests(int argc, char **argv)
{
    int failedClasses = 0;
    for (const TestFactory &make : factories()) {
        const std::unique_ptr<QObject> object = make();
        if (QTest::qExec(object.get(), argc, argv) != 0)
            ++failedClasses;
    }
    return std::min(failedClasses, 127);
}

} // namespace tarvo::test
