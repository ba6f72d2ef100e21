#include "settings/apikeycheck.h"

#include <QCoreApplication>

namespace zentrik {

std::optional<QString> apiKeyProblem(const QString &key)
{
    for (const QChar c : key) {
        const char16_t unit = c.unicode();
        if (unit == u' ') {
            return QCoreApplication::translate("zentrik", "a space");
        }
        if (unit < 0x20 || unit == 0x7f) {
            return QCoreApplication::translate("zentrik", "a control character");
        }
        if (unit > 0x7e) {
            return QCoreApplication::translate("zentrik", "a non-ASCII character");
        }
    }
    return std::nullopt;
}

} // namespace zentrik
