#include "net/connectionpolicy.h"

#include "net/httpreply.h"
#include "net/proxyfactory.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

namespace zentrik {

ConnectionPolicy::ConnectionPolicy(QNetworkAccessManager *manager)
    : m_manager(manager)
    , m_proxies(new ProxyFactory(ProxySettings {}))
{
    m_manager->setProxyFactory(m_proxies);
}

void ConnectionPolicy::apply(const NetworkSettings &settings)
{
    if (settings == m_settings) {
        return;
    }
    m_settings = settings;
    m_proxies = new ProxyFactory(settings.proxy);
    m_manager->setProxyFactory(m_proxies);
    m_tls.setCaFile(settings.caFile);
    m_manager->clearConnectionCache();
}

void ConnectionPolicy::prepare(QNetworkRequest &request)
{
    if (request.url().scheme() == QLatin1String("http")) {
        const std::optional<QNetworkProxy> proxy = proxyFor(request.url());
        if (proxy && proxy->hasRawHeader(ProxyFactory::credentialsHeader)) {
            request.setRawHeader(ProxyFactory::credentialsHeader, proxy->rawHeader(ProxyFactory::credentialsHeader));
        }
    }
#if QT_CONFIG(ssl)
    if (request.url().scheme() == QLatin1String("https")) {
        request.setSslConfiguration(m_tls.configuration());
    }
#endif
}

std::optional<QNetworkProxy> ConnectionPolicy::proxyFor(const QUrl &url) const
{
    const QList<QNetworkProxy> proxies = m_proxies->queryProxy(QNetworkProxyQuery(url));
    if (proxies.isEmpty() || proxies.constFirst().type() == QNetworkProxy::NoProxy
        || proxies.constFirst().type() == QNetworkProxy::DefaultProxy) {
        return std::nullopt;
    }
    return proxies.constFirst();
}

TransportError ConnectionPolicy::failureOf(const QNetworkReply *reply) const
{
    const std::optional<QNetworkProxy> proxy = proxyFor(reply->url());
    httpreply::ProxyInUse inUse;
    if (proxy) {
        ProxySettings described;
        described.host = proxy->hostName();
        described.port = proxy->port();
        inUse.address = described.address();
        inUse.host = proxy->hostName();
        inUse.hasCredentials = !proxy->user().isEmpty() || proxy->hasRawHeader(ProxyFactory::credentialsHeader);
    }
    TransportError error = httpreply::transportErrorOf(reply, inUse);
    if (reply->error() == QNetworkReply::SslHandshakeFailedError && !m_tls.problem().isEmpty()) {
        error.description += QLatin1Char(' ') + m_tls.problem();
    }
    return error;
}

} // namespace zentrik
