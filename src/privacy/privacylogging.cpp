#include "privacy/privacylogging.h"

namespace zentrik {
Q_LOGGING_CATEGORY(lcPrivacy, "zentrik.privacy", QtInfoMsg)
} // namespace zentrik
