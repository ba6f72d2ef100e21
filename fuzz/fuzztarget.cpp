#include "fuzztarget.h"

namespace zentrik::fuzz {

namespace {

std::vector<Target> &registry()
{
    // Built on first use: targets register from static initialisers in other files.
    static std::vector<Target> all;
    return all;
}

} // namespace

bool registerTarget(const char *name, Entry entry)
{
    registry().push_back({ name, entry });
    return true;
}

const std::vector<Target> &targets()
{
    return registry();
}

} // namespace zentrik::fuzz
