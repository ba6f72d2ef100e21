#include "hungsecretservice.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusVirtualObject>
#include <QUuid>

namespace zentrik::test {

namespace {

// Accepts every call on every path and sends nothing back.
class Silence : public QDBusVirtualObject
{
public:
    QString introspect(const QString & /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage & /*message*/, const QDBusConnection & /*connection*/) override
    {
        return true;
    }
};

} // namespace

HungSecretService::HungSecretService()
    : m_connectionName(QStringLiteral("hung-secret-service-%1").arg(QUuid::createUuid().toString(QUuid::Id128)))
    , m_silence(std::make_unique<Silence>())
{
    m_daemon.start(QStringLiteral("dbus-daemon"),
        { QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address=1") });
    if (!m_daemon.waitForStarted(5000)) {
        m_error = QStringLiteral("dbus-daemon did not start: %1").arg(m_daemon.errorString());
        return;
    }
    while (!m_daemon.canReadLine() && m_daemon.waitForReadyRead(5000)) { }
    m_address = QString::fromUtf8(m_daemon.readLine()).trimmed();
    if (m_address.isEmpty()) {
        m_error = QStringLiteral("dbus-daemon printed no address");
        return;
    }
    QDBusConnection bus = QDBusConnection::connectToBus(m_address, m_connectionName);
    if (!bus.isConnected()) {
        m_error = QStringLiteral("cannot connect to the private bus: %1").arg(bus.lastError().message());
        return;
    }
    if (!bus.registerVirtualObject(QStringLiteral("/"), m_silence.get(), QDBusConnection::SubPath)) {
        m_error = QStringLiteral("cannot register the silent object");
        return;
    }
    if (!bus.registerService(QStringLiteral("org.freedesktop.secrets"))) {
        m_error = QStringLiteral("cannot own org.freedesktop.secrets: %1").arg(bus.lastError().message());
    }
}

HungSecretService::~HungSecretService()
{
    {
        QDBusConnection bus(m_connectionName);
        bus.unregisterObject(QStringLiteral("/"), QDBusConnection::UnregisterTree);
    }
    QDBusConnection::disconnectFromBus(m_connectionName);
    m_daemon.kill();
    m_daemon.waitForFinished(5000);
}

QProcessEnvironment HungSecretService::environment() const
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_address);
    return env;
}

} // namespace zentrik::test
