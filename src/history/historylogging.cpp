#include "history/historylogging.h"

namespace zentrik {
Q_LOGGING_CATEGORY(lcHistory, "zentrik.history")
}
