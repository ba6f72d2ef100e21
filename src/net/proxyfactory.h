#pragma once

#include "net/networksettings.h"

#include <QNetworkProxyFactory>

namespace zentrik {

// Chooses the proxy for each request from the user's proxy settings: the system's (the
// desktop's settings and the http_proxy, https_proxy and no_proxy variables), none, or the
// one manual proxy. A server on this computer is always reached directly, whatever the
// settings or the environment say, so a local model keeps working behind any proxy. An
// HTTP proxy's user and password are handed over as a ready Basic credentials header.
class ProxyFactory : public QNetworkProxyFactory
{
public:
    explicit ProxyFactory(ProxySettings settings);

    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery &query) override;

    // Carries an HTTP proxy's credentials (see queryProxy()).
    static constexpr const char *credentialsHeader = "Proxy-Authorization";

    [[nodiscard]] const ProxySettings &settings() const { return m_settings; }

private:
    ProxySettings m_settings;
};

} // namespace zentrik
