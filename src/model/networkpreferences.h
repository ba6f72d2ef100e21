#pragma once

#include "net/networksettings.h"

#include <QString>

namespace zentrik {

class Preferences;

// Where the network settings are kept: the proxy (as ProxySettings::toString() writes it)
// and the CA file in the preferences, the proxy's password in the Secret Service.
namespace NetworkPreferences {
inline constexpr const char *proxyPreference = "proxy";
inline constexpr const char *caFilePreference = "caFile";
// The manual proxy last typed, kept while another mode is chosen so that going back finds it.
inline constexpr const char *manualProxyPreference = "proxyManual";
inline constexpr const char *proxyPasswordAccount = "proxyPassword";

// The stored settings, without the password. A stored proxy that cannot be read counts as
// the system's (and says so in the log once).
[[nodiscard]] NetworkSettings read(const Preferences &preferences);
// Whether the proxy asks for a password, which then has to come from the Secret Service.
[[nodiscard]] bool needsPassword(const NetworkSettings &settings);
// Why a file cannot serve as the extra CA file; empty when it can (or path is empty).
[[nodiscard]] QString caFileProblem(const QString &path);
} // namespace NetworkPreferences

} // namespace zentrik
