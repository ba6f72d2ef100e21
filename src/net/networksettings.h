#pragma once

#include <QString>

#include <variant>

namespace zentrik {

// Which proxy the program's requests go through. "system" takes the desktop's settings and
// the http_proxy, https_proxy and no_proxy variables; "none" goes straight out; "manual"
// names one HTTP or SOCKS5 proxy, with a user and password when it asks for them. Whatever
// the mode, a server on this computer (localhost, 127.0.0.1, ::1) is reached directly.
struct ProxySettings
{
    enum class Mode { system, none, manual };
    enum class Type { http, socks5 };

    Mode mode = Mode::system;
    Type type = Type::http;
    QString host;
    quint16 port = 0;
    QString user;
    // Kept in the Secret Service, never with the other settings.
    QString password;

    // "system", "none", or the manual proxy as "http://user@host:port" or "socks5://host:port",
    // never with its password.
    [[nodiscard]] QString toString() const;
    // Reads the form toString() writes. A password in the address is refused, since the text
    // would end up in a shell's history or a settings file; it is given on its own.
    [[nodiscard]] static std::variant<ProxySettings, QString> parse(const QString &text);
    // Why a manual proxy cannot be used (no host, no port, …); empty when it can.
    [[nodiscard]] QString problem() const;
    // "host:port" of a manual proxy, with brackets around an IPv6 address.
    [[nodiscard]] QString address() const;

    friend bool operator==(const ProxySettings &, const ProxySettings &) = default;
};

// Everything about how requests reach the network that the user can change.
struct NetworkSettings
{
    ProxySettings proxy;
    // A PEM file of certificates trusted in addition to the system's (a company's
    // TLS-inspecting gateway); empty for none. Verification itself is never switched off.
    QString caFile;

    friend bool operator==(const NetworkSettings &, const NetworkSettings &) = default;
};

// Whether a host is this computer, which no proxy ever stands in front of: "localhost" (and
// names under it) and every loopback address, 127.0.0.1 and ::1 among them.
[[nodiscard]] bool isLoopbackHost(const QString &host);

} // namespace zentrik
