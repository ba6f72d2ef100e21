#pragma once

#include "net/networksettings.h"

#include <QObject>
#include <QVariantMap>
#include <QtQmlIntegration>

namespace zentrik {

class Preferences;

// The network part of the settings screen, as typed: the proxy (system, none or manual,
// HTTP or SOCKS5, host, port, user, password) and the extra CA file. Saved with the rest of
// the settings; `problem` says, while the user types, what would stop the save.
class NetworkSettingsForm : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The settings screen hands out its network form")
    Q_PROPERTY(QString proxyMode READ proxyMode WRITE setProxyMode NOTIFY changed FINAL)
    Q_PROPERTY(QString proxyType READ proxyType WRITE setProxyType NOTIFY changed FINAL)
    Q_PROPERTY(QString proxyHost READ proxyHost WRITE setProxyHost NOTIFY changed FINAL)
    Q_PROPERTY(int proxyPort READ proxyPort WRITE setProxyPort NOTIFY changed FINAL)
    Q_PROPERTY(QString proxyUser READ proxyUser WRITE setProxyUser NOTIFY changed FINAL)
    Q_PROPERTY(QString proxyPassword READ proxyPassword WRITE setProxyPassword NOTIFY changed FINAL)
    Q_PROPERTY(QString caFile READ caFile WRITE setCaFile NOTIFY changed FINAL)
    Q_PROPERTY(QString problem READ problem NOTIFY changed FINAL)
    Q_PROPERTY(QStringList proxyModes READ proxyModes CONSTANT FINAL)
    Q_PROPERTY(QStringList proxyTypes READ proxyTypes CONSTANT FINAL)

public:
    explicit NetworkSettingsForm(QObject *parent = nullptr);

    // "system", "none" or "manual".
    [[nodiscard]] QString proxyMode() const;
    void setProxyMode(const QString &mode);
    // "http" or "socks5".
    [[nodiscard]] QString proxyType() const;
    void setProxyType(const QString &type);
    [[nodiscard]] QString proxyHost() const { return m_settings.proxy.host; }
    void setProxyHost(const QString &host);
    [[nodiscard]] int proxyPort() const { return m_settings.proxy.port; }
    void setProxyPort(int port);
    [[nodiscard]] QString proxyUser() const { return m_settings.proxy.user; }
    void setProxyUser(const QString &user);
    [[nodiscard]] QString proxyPassword() const { return m_settings.proxy.password; }
    void setProxyPassword(const QString &password);
    [[nodiscard]] QString caFile() const { return m_settings.caFile; }
    // Also takes a file:// address, as a file dialog gives it.
    void setCaFile(const QString &path);
    [[nodiscard]] static QStringList proxyModes();
    [[nodiscard]] static QStringList proxyTypes();

    // What stops a save: an incomplete manual proxy, a password without a user, a CA file
    // that cannot be read or holds no certificate. Empty when the form can be saved.
    [[nodiscard]] QString problem() const;
    [[nodiscard]] const NetworkSettings &settings() const { return m_settings; }

    // Fills the form from the stored settings; the password comes later (setProxyPassword)
    // when it has been read from the Secret Service.
    void load(const Preferences &preferences);
    // Puts the proxy and CA file into the preferences' values (the password never).
    void writeTo(QVariantMap &values) const;
    // The proxy's password for the Secret Service: empty (so removed) when no user is set.
    [[nodiscard]] QString passwordToStore() const;

Q_SIGNALS:
    void changed();

private:
    void update(const std::function<void(NetworkSettings &settings)> &edit);

    NetworkSettings m_settings;
};

} // namespace zentrik
