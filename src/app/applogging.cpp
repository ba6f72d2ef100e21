#include "app/applogging.h"

namespace zentrik {
Q_LOGGING_CATEGORY(lcApp, "zentrik.app", QtInfoMsg)
} // namespace zentrik
