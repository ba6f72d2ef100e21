#include "testregistry.h"

#include <QtTest>

#include <cstring>
#include <string>
#include <utility>

namespace zentrik::test {

namespace {
struct Entry
{
    const char *name;
    TestFactory factory;
    bool childOnly;
};

std::vector<Entry> &registry()
{
    static std::vector<Entry> entries;
    return entries;
}
} // namespace

bool registerTestClass(const char *name, TestFactory factory, bool childOnly)
{
    registry().push_back({ name, std::move(factory), childOnly });
    return true;
}

// Runs every registered class, or only those named with "-class Name" (repeatable);
// all other arguments go to QTest as usual.
int runRegisteredTests(int argc, char **argv)
{
    std::vector<std::string> only;
    std::vector<char *> passOn;
    passOn.push_back(argv[0]);
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "-class") == 0 && i + 1 < argc) {
            only.emplace_back(argv[++i]);
        } else {
            passOn.push_back(argv[i]);
        }
    }
    int failures = 0;
    int ran = 0;
    for (const Entry &entry : registry()) {
        const bool named = std::find(only.begin(), only.end(), entry.name) != only.end();
        // A skip in initTestCase leaves QtTest skipping every class after it in the same
        // process, so child halves are left out here instead of skipping themselves.
        if ((!only.empty() && !named) || (entry.childOnly && !named)) {
            continue;
        }
        std::unique_ptr<QObject> object = entry.factory();
        failures += QTest::qExec(object.get(), int(passOn.size()), passOn.data());
        ++ran;
    }
    if (ran == 0) {
        qWarning("no test class matched");
        return 1;
    }
    return failures == 0 ? 0 : 1;
}

} // namespace zentrik::test
