#include "net/proxyfactory.h"

namespace zentrik {

ProxyFactory::ProxyFactory(ProxySettings settings)
    : m_settings(std::move(settings))
{ }

namespace {

// An HTTP proxy's user and password travel as a header that goes with the first attempt:
// on the CONNECT of a secure request (the proxy's own headers), and on a plain request
// itself (ConnectionPolicy adds it). Left to Qt, they would be sent only after the proxy
// refused a first attempt, by sending the request again, which a request the other side
// may have acted on never is.
QNetworkProxy withPreemptiveCredentials(QNetworkProxy proxy)
{
    if (proxy.type() != QNetworkProxy::HttpProxy || proxy.user().isEmpty()) {
        return proxy;
    }
    const QByteArray credentials = (proxy.user() + QLatin1Char(':') + proxy.password()).toUtf8().toBase64();
    proxy.setRawHeader(ProxyFactory::credentialsHeader, "Basic " + credentials);
    proxy.setUser({});
    proxy.setPassword({});
    return proxy;
}

} // namespace

QList<QNetworkProxy> ProxyFactory::queryProxy(const QNetworkProxyQuery &query)
{
    if (isLoopbackHost(query.peerHostName())) {
        return { QNetworkProxy(QNetworkProxy::NoProxy) };
    }
    switch (m_settings.mode) {
    case ProxySettings::Mode::system: {
        QList<QNetworkProxy> proxies = systemProxyForQuery(query);
        for (QNetworkProxy &proxy : proxies) {
            proxy = withPreemptiveCredentials(proxy);
        }
        return proxies;
    }
    case ProxySettings::Mode::none:
        return { QNetworkProxy(QNetworkProxy::NoProxy) };
    case ProxySettings::Mode::manual:
        break;
    }
    const auto type
        = m_settings.type == ProxySettings::Type::socks5 ? QNetworkProxy::Socks5Proxy : QNetworkProxy::HttpProxy;
    QNetworkProxy proxy(type, m_settings.host, m_settings.port, m_settings.user, m_settings.password);
    if (type == QNetworkProxy::Socks5Proxy) {
        // The proxy looks up the names, so a host only it can resolve is reachable.
        proxy.setCapabilities(proxy.capabilities() | QNetworkProxy::HostNameLookupCapability);
    }
    return { withPreemptiveCredentials(proxy) };
}

} // namespace zentrik
