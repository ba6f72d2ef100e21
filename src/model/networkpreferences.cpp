#include "model/networkpreferences.h"

#include "model/modellogging.h"
#include "net/tlstrust.h"
#include "settings/preferences.h"

namespace zentrik::NetworkPreferences {

NetworkSettings read(const Preferences &preferences)
{
    NetworkSettings settings;
    const QString proxy = preferences.string(QString::fromLatin1(proxyPreference), QStringLiteral("system"));
    auto parsed = ProxySettings::parse(proxy);
    if (auto *valid = std::get_if<ProxySettings>(&parsed)) {
        settings.proxy = *valid;
    } else {
        qCWarning(lcModel).noquote() << "The stored proxy setting cannot be used, so the system's applies:"
                                     << std::get<QString>(parsed);
    }
    settings.caFile = preferences.string(QString::fromLatin1(caFilePreference));
    return settings;
}

bool needsPassword(const NetworkSettings &settings)
{
    return settings.proxy.mode == ProxySettings::Mode::manual && !settings.proxy.user.isEmpty();
}

QString caFileProblem(const QString &path)
{
    if (path.isEmpty()) {
        return {};
    }
#if QT_CONFIG(ssl)
    const auto read = TlsTrust::readCaFile(path);
    if (const auto *problem = std::get_if<QString>(&read)) {
        return *problem;
    }
#endif
    return {};
}

} // namespace zentrik::NetworkPreferences
