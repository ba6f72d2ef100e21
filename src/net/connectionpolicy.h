#pragma once

#include "net/networksettings.h"
#include "net/tlstrust.h"
#include "net/transporterror.h"

#include <QNetworkProxy>

#include <optional>

class QNetworkAccessManager;
class QNetworkReply;
class QNetworkRequest;

namespace zentrik {

class ProxyFactory;

// How one HttpClient's connections are made: through which proxy, trusting which
// certificate authorities, and how a failure of either is told to the user.
class ConnectionPolicy
{
public:
    // Starts with the system's proxy settings and the system's authorities.
    explicit ConnectionPolicy(QNetworkAccessManager *manager);

    [[nodiscard]] const NetworkSettings &settings() const { return m_settings; }
    // Requests started from now on follow the new settings; connections kept open under the
    // old ones are closed once their requests are done.
    void apply(const NetworkSettings &settings);

    // Sets what a request needs beyond its own headers: the TLS configuration for https,
    // and for plain http through a proxy that wants them, the proxy's credentials.
    void prepare(QNetworkRequest &request);
    // The failure of a reply that brought no answer, naming the proxy when it was the proxy
    // that failed and the extra CA file when it could not be used for a failed handshake.
    [[nodiscard]] TransportError failureOf(const QNetworkReply *reply) const;
    // The proxy a request to this address goes through, if any.
    [[nodiscard]] std::optional<QNetworkProxy> proxyFor(const QUrl &url) const;

private:
    QNetworkAccessManager *m_manager;
    // Owned by the manager, which deletes the previous one when given the next.
    ProxyFactory *m_proxies = nullptr;
    NetworkSettings m_settings;
    TlsTrust m_tls;
};

} // namespace zentrik
