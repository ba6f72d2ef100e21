#include "settings/preferences.h"

#include <QDir>
#include <QSettings>
#include <QStandardPaths>

namespace zentrik {

namespace {
const char *const configDirVariable = "ZENTRIK_CONFIG_DIR";

QString overrideDirectory()
{
    return qEnvironmentVariable(configDirVariable);
}
} // namespace

Preferences::Preferences()
{
    const QString dir = overrideDirectory();
    if (dir.isEmpty()) {
        m_settings = std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                                 QStringLiteral("Zentrik"), QStringLiteral("Zentrik"));
    } else {
        QDir().mkpath(dir);
        m_settings = std::make_unique<QSettings>(QDir(dir).filePath(QStringLiteral("Zentrik.conf")),
                                                 QSettings::IniFormat);
    }
}

Preferences::~Preferences() = default;

bool Preferences::contains(const QString &key) const
{
    m_settings->sync();
    return m_settings->contains(key);
}

QString Preferences::string(const QString &key, const QString &fallback) const
{
    m_settings->sync();
    const QVariant value = m_settings->value(key);
    return value.isValid() ? value.toString() : fallback;
}

bool Preferences::boolean(const QString &key, bool fallback) const
{
    m_settings->sync();
    const QVariant value = m_settings->value(key);
    return value.isValid() ? value.toBool() : fallback;
}

QByteArray Preferences::data(const QString &key) const
{
    m_settings->sync();
    return m_settings->value(key).toByteArray();
}

void Preferences::setString(const QString &key, const QString &value)
{
    m_settings->setValue(key, value);
    m_settings->sync();
}

void Preferences::setBoolean(const QString &key, bool value)
{
    m_settings->setValue(key, value);
    m_settings->sync();
}

void Preferences::setData(const QString &key, const QByteArray &value)
{
    m_settings->setValue(key, value);
    m_settings->sync();
}

void Preferences::remove(const QString &key)
{
    m_settings->remove(key);
    m_settings->sync();
}

QString Preferences::fileName() const
{
    return m_settings->fileName();
}

QString Preferences::configDirectory()
{
    const QString dir = overrideDirectory();
    if (!dir.isEmpty()) {
        return dir;
    }
    return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation))
        .filePath(QStringLiteral("Zentrik"));
}

QString Preferences::dataDirectory()
{
    const QString dir = overrideDirectory();
    if (!dir.isEmpty()) {
        return QDir(dir).filePath(QStringLiteral("data"));
    }
    return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation))
        .filePath(QStringLiteral("Zentrik"));
}

} // namespace zentrik
