#pragma once

#include <QLoggingCategory>

namespace zentrik {
Q_DECLARE_LOGGING_CATEGORY(lcHistory)
}
