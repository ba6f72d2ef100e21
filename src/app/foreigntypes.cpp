#include "app/foreigntypes.h"

namespace zentrik {

APIManager *APIManagerForeign::create(QQmlEngine * /*engine*/, QJSEngine * /*scriptEngine*/)
{
    // The engine owns the singleton and deletes it with itself.
    return new APIManager;
}

} // namespace zentrik
