#pragma once

#include <QObject>

#include <functional>
#include <memory>
#include <vector>

namespace zentrik::test {

using TestFactory = std::function<std::unique_ptr<QObject>()>;

// Test classes register themselves so that one executable per library runs all of them.
bool registerTestClass(const char *name, TestFactory factory);

int runRegisteredTests(int argc, char **argv);

} // namespace zentrik::test

// Use in a tst_*.cpp after the class definition: ZENTRIK_TEST(MyTest)
#define ZENTRIK_TEST(Class)                                                                   \
    namespace {                                                                               \
    [[maybe_unused]] const bool registered_##Class = zentrik::test::registerTestClass(        \
        #Class, [] { return std::unique_ptr<QObject>(new Class); });                          \
    }
