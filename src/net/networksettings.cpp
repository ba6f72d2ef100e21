#include "net/networksettings.h"

#include <QCoreApplication>
#include <QHostAddress>
#include <QUrl>

namespace zentrik {

namespace {
QString tr(const char *text)
{
    return QCoreApplication::translate("NetworkSettings", text);
}

QString schemeOf(ProxySettings::Type type)
{
    return type == ProxySettings::Type::socks5 ? QStringLiteral("socks5") : QStringLiteral("http");
}
} // namespace

QString ProxySettings::address() const
{
    const bool ipv6 = host.contains(QLatin1Char(':'));
    return QStringLiteral("%1:%2").arg(ipv6 ? QLatin1Char('[') + host + QLatin1Char(']') : host).arg(port);
}

QString ProxySettings::toString() const
{
    switch (mode) {
    case Mode::system:
        return QStringLiteral("system");
    case Mode::none:
        return QStringLiteral("none");
    case Mode::manual:
        break;
    }
    QUrl url;
    url.setScheme(schemeOf(type));
    url.setHost(host);
    url.setPort(port);
    url.setUserName(user);
    return url.toString();
}

QString ProxySettings::problem() const
{
    if (mode != Mode::manual) {
        return {};
    }
    if (host.isEmpty()) {
        return tr("The proxy needs a host name or address.");
    }
    if (port == 0) {
        return tr("The proxy needs a port (1 to 65535).");
    }
    QUrl url;
    url.setHost(host, QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty()) {
        return tr("\"%1\" is not a host name or address.").arg(host);
    }
    return {};
}

std::variant<ProxySettings, QString> ProxySettings::parse(const QString &text)
{
    const QString trimmed = text.trimmed();
    ProxySettings settings;
    if (trimmed.compare(QLatin1String("system"), Qt::CaseInsensitive) == 0) {
        return settings;
    }
    if (trimmed.compare(QLatin1String("none"), Qt::CaseInsensitive) == 0) {
        settings.mode = Mode::none;
        return settings;
    }
    const QString withScheme = trimmed.contains(QLatin1String("://")) ? trimmed : QStringLiteral("http://") + trimmed;
    const QUrl url(withScheme, QUrl::StrictMode);
    const QString scheme = url.scheme().toLower();
    if (!url.isValid() || url.host().isEmpty()) {
        return tr("\"%1\" is not a proxy; give system, none, http://HOST:PORT or socks5://HOST:PORT").arg(trimmed);
    }
    if (scheme != QLatin1String("http") && scheme != QLatin1String("socks5")) {
        return tr("The proxy must be http:// or socks5://, not %1://").arg(url.scheme());
    }
    if (!url.password().isEmpty()) {
        return tr("Give the proxy's password on its own, not in the address");
    }
    if (url.port() <= 0) {
        return tr("Give the proxy's port, as in %1://%2:3128").arg(scheme, url.host());
    }
    if (!url.path().isEmpty() && url.path() != QLatin1String("/")) {
        return tr("A proxy address has no path: %1").arg(trimmed);
    }
    settings.mode = Mode::manual;
    settings.type = scheme == QLatin1String("socks5") ? Type::socks5 : Type::http;
    settings.host = url.host();
    settings.port = quint16(url.port());
    settings.user = url.userName();
    return settings;
}

bool isLoopbackHost(const QString &host)
{
    QString name = host.toLower();
    if (name.endsWith(QLatin1Char('.'))) {
        name.chop(1);
    }
    if (name.startsWith(QLatin1Char('[')) && name.endsWith(QLatin1Char(']'))) {
        name = name.mid(1, name.size() - 2);
    }
    if (name == QLatin1String("localhost") || name.endsWith(QLatin1String(".localhost"))) {
        return true;
    }
    const QHostAddress address(name);
    return !address.isNull() && address.isLoopback();
}

} // namespace zentrik
