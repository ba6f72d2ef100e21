#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// A fuzz target is one function that takes arbitrary bytes. The same function runs under
// libFuzzer (one target per executable, fuzzmain.cpp) and in the corpus replay test (every
// target in one executable), so what the fuzzer learnt keeps being checked on every build.
namespace zentrik::fuzz {

using Entry = int (*)(const uint8_t *data, size_t size);

struct Target
{
    const char *name;
    Entry entry;
};

bool registerTarget(const char *name, Entry entry);
[[nodiscard]] const std::vector<Target> &targets();

// Called when a target finds that a property it checks does not hold. Under libFuzzer it
// aborts so that the input is saved as a crash; the replay test turns it into a failure
// of the input being replayed.
[[noreturn]] void propertyFailed(const char *file, int line, const char *condition, const char *what);

} // namespace zentrik::fuzz

// Defines the entry function of a target and registers it under `name`, which is also the
// name of its executable (fuzz_<name>) and of its corpus folder (corpus/<name>).
#define ZENTRIK_FUZZ_TARGET(name)                                                                                      \
    static int zentrikFuzzOne_##name(const uint8_t *data, size_t size);                                                \
    [[maybe_unused]] static const bool zentrikFuzzRegistered_##name                                                    \
        = zentrik::fuzz::registerTarget(#name, &zentrikFuzzOne_##name);                                                \
    static int zentrikFuzzOne_##name(const uint8_t *data, size_t size)

#define FUZZ_CHECK(condition, what)                                                                                    \
    do {                                                                                                               \
        if (!(condition)) {                                                                                            \
            zentrik::fuzz::propertyFailed(__FILE__, __LINE__, #condition, what);                                       \
        }                                                                                                              \
    } while (false)
