// The libFuzzer side of a target: each fuzz executable links exactly one target file.

#include "fuzztarget.h"

#include <QLoggingCategory>

#include <cstdio>
#include <cstdlib>

namespace zentrik::fuzz {

void propertyFailed(const char *file, int line, const char *condition, const char *what)
{
    std::fprintf(stderr, "%s:%d: property does not hold: %s (%s)\n", file, line, what, condition);
    std::abort();
}

} // namespace zentrik::fuzz

extern "C" int LLVMFuzzerInitialize(int * /*argc*/, char *** /*argv*/)
{
    // The libraries log every stream they give up on; at thousands of inputs a second that
    // would bury the fuzzer's own report.
    QLoggingCategory::setFilterRules(QStringLiteral("*=false"));
    if (zentrik::fuzz::targets().size() != 1) {
        std::fprintf(stderr, "a fuzz executable must hold exactly one target, this one holds %zu\n",
            zentrik::fuzz::targets().size());
        std::abort();
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const zentrik::fuzz::Entry entry = zentrik::fuzz::targets().front().entry;
    return entry(data, size);
}
