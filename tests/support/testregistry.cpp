#include "testregistry.h"

#include <QtTest>

#include <cstring>
#include <string>
#include <utility>

namespace zentrik::test {

namespace {
struct Entry {
    const char *name;
    TestFactory factory;
};

std::vector<Entry> &registry()
{
    static std::vector<Entry> entries;
    return entries;
}
} // namespace

bool registerTestClass(const char *name, TestFactory factory)
{
    registry().push_back({name, std::move(factory)});
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
        if (!only.empty() && std::find(only.begin(), only.end(), entry.name) == only.end()) {
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
