#pragma once

#include <QProcess>
#include <QProcessEnvironment>
#include <QString>

#include <memory>

class QDBusVirtualObject;

namespace zentrik::test {

// A private session bus on which org.freedesktop.secrets belongs to a connection that takes
// every call and never answers: a Secret Service stuck on a prompt. Point a child process
// at it with environment(); the daemon stops with this object.
class HungSecretService
{
public:
    HungSecretService();
    ~HungSecretService();
    HungSecretService(const HungSecretService &) = delete;
    HungSecretService &operator=(const HungSecretService &) = delete;

    // False when the bus could not be started or the name not taken (the reason in error()).
    [[nodiscard]] bool isReady() const { return m_error.isEmpty(); }
    [[nodiscard]] QString error() const { return m_error; }
    [[nodiscard]] QString address() const { return m_address; }
    // The calling process's environment with DBUS_SESSION_BUS_ADDRESS on the hung bus.
    [[nodiscard]] QProcessEnvironment environment() const;

private:
    QProcess m_daemon;
    QString m_address;
    QString m_connectionName;
    QString m_error;
    std::unique_ptr<QDBusVirtualObject> m_silence;
};

} // namespace zentrik::test
