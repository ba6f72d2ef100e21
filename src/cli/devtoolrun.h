#pragma once

#include <QString>

namespace zentrik {
class APIManager;
}

namespace zentrik::cli {

// One send of the Code Debugger ("debugger") or the Sample Data Generator ("sampleData"),
// printing the reply as it streams (or in one piece for the models that do not stream).
int runDevTool(APIManager &manager, const QString &tool, const QString &suggestion, const QString &text);

} // namespace zentrik::cli
