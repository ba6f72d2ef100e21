#pragma once

#include <QObject>

#include <functional>
#include <memory>
#include <vector>

namespace zentrik::test {

using TestFactory = std::function<std::unique_ptr<QObject>()>;

// Test classes register themselves so that one executable per library runs all of them.
// A class registered as childOnly runs only when named with "-class": it is the half of a
// test that runs in a child process set up differently (another bus, a file size limit).
bool registerTestClass(const char *name, TestFactory factory, bool childOnly = false);

int runRegisteredTests(int argc, char **argv);

} // namespace zentrik::test

// Use in a tst_*.cpp after the class definition: ZENTRIK_TEST(MyTest)
#define ZENTRIK_TEST(Class)                                                                                            \
    namespace {                                                                                                        \
    [[maybe_unused]] const bool registered_##Class                                                                     \
        = zentrik::test::registerTestClass(#Class, [] { return std::unique_ptr<QObject>(new Class); });                \
    }

// The child half of a test (see registerTestClass); never run with the rest.
#define ZENTRIK_CHILD_TEST(Class)                                                                                      \
    namespace {                                                                                                        \
    [[maybe_unused]] const bool registered_##Class = zentrik::test::registerTestClass(                                 \
        #Class, [] { return std::unique_ptr<QObject>(new Class); }, true);                                             \
    }
