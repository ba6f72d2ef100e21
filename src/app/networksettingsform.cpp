#include "app/networksettingsform.h"

#include "model/networkpreferences.h"
#include "settings/preferences.h"

#include <QUrl>

namespace zentrik {

namespace {
const QStringList modeNames { QStringLiteral("system"), QStringLiteral("none"), QStringLiteral("manual") };
const QStringList typeNames { QStringLiteral("http"), QStringLiteral("socks5") };
} // namespace

NetworkSettingsForm::NetworkSettingsForm(QObject *parent)
    : QObject(parent)
{ }

void NetworkSettingsForm::update(const std::function<void(NetworkSettings &settings)> &edit)
{
    NetworkSettings next = m_settings;
    edit(next);
    if (next == m_settings) {
        return;
    }
    m_settings = next;
    Q_EMIT changed();
}

QString NetworkSettingsForm::proxyMode() const
{
    return modeNames.at(int(m_settings.proxy.mode));
}

void NetworkSettingsForm::setProxyMode(const QString &mode)
{
    const qsizetype index = modeNames.indexOf(mode);
    if (index >= 0) {
        update([index](NetworkSettings &s) { s.proxy.mode = ProxySettings::Mode(index); });
    }
}

QString NetworkSettingsForm::proxyType() const
{
    return typeNames.at(int(m_settings.proxy.type));
}

void NetworkSettingsForm::setProxyType(const QString &type)
{
    const qsizetype index = typeNames.indexOf(type);
    if (index >= 0) {
        update([index](NetworkSettings &s) { s.proxy.type = ProxySettings::Type(index); });
    }
}

void NetworkSettingsForm::setProxyHost(const QString &host)
{
    update([&host](NetworkSettings &s) { s.proxy.host = host.trimmed(); });
}

void NetworkSettingsForm::setProxyPort(int port)
{
    update([port](NetworkSettings &s) { s.proxy.port = port > 0 && port <= 65535 ? quint16(port) : 0; });
}

void NetworkSettingsForm::setProxyUser(const QString &user)
{
    update([&user](NetworkSettings &s) { s.proxy.user = user.trimmed(); });
}

void NetworkSettingsForm::setProxyPassword(const QString &password)
{
    update([&password](NetworkSettings &s) { s.proxy.password = password; });
}

void NetworkSettingsForm::setCaFile(const QString &path)
{
    const QUrl url(path);
    const QString local = url.isLocalFile() ? url.toLocalFile() : path.trimmed();
    update([&local](NetworkSettings &s) { s.caFile = local; });
}

QStringList NetworkSettingsForm::proxyModes()
{
    return modeNames;
}

QStringList NetworkSettingsForm::proxyTypes()
{
    return typeNames;
}

QString NetworkSettingsForm::problem() const
{
    const ProxySettings &proxy = m_settings.proxy;
    if (proxy.mode == ProxySettings::Mode::manual) {
        if (QString problem = proxy.problem(); !problem.isEmpty()) {
            return problem;
        }
        if (proxy.user.isEmpty() && !proxy.password.isEmpty()) {
            return tr("A proxy password needs a user name.");
        }
    }
    return NetworkPreferences::caFileProblem(m_settings.caFile);
}

void NetworkSettingsForm::load(const Preferences &preferences)
{
    NetworkSettings stored = NetworkPreferences::read(preferences);
    if (stored.proxy.mode != ProxySettings::Mode::manual) {
        const auto manual
            = ProxySettings::parse(preferences.string(QString::fromLatin1(NetworkPreferences::manualProxyPreference)));
        if (const auto *remembered = std::get_if<ProxySettings>(&manual);
            remembered != nullptr && remembered->mode == ProxySettings::Mode::manual) {
            const ProxySettings::Mode mode = stored.proxy.mode;
            stored.proxy = *remembered;
            stored.proxy.mode = mode;
        }
    }
    update([&stored](NetworkSettings &s) {
        const QString typedPassword = s.proxy.password;
        s = stored;
        s.proxy.password = typedPassword;
    });
}

void NetworkSettingsForm::writeTo(QVariantMap &values) const
{
    ProxySettings proxy = m_settings.proxy;
    proxy.password.clear();
    values.insert(QString::fromLatin1(NetworkPreferences::proxyPreference), proxy.toString());
    if (!proxy.host.isEmpty()) {
        proxy.mode = ProxySettings::Mode::manual;
        values.insert(QString::fromLatin1(NetworkPreferences::manualProxyPreference), proxy.toString());
    }
    values.insert(QString::fromLatin1(NetworkPreferences::caFilePreference), m_settings.caFile);
}

QString NetworkSettingsForm::passwordToStore() const
{
    // Kept while another mode is chosen, like the rest of the manual proxy.
    return m_settings.proxy.user.isEmpty() ? QString() : m_settings.proxy.password;
}

} // namespace zentrik
