#include "settings/preferences.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QSettings>
#include <QStandardPaths>
#include <QThread>

#include <atomic>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace zentrik {

namespace {
const char *const configDirVariable = "ZENTRIK_CONFIG_DIR";

// Beside the file: "Zentrik.conf.lock" (the name QSettings itself locks with, so that a
// QSettings writer elsewhere waits too) and the copies of a write in progress.
const char *const scratchInfix = ".write-";
// Twenty processes writing at once each hold the lock for milliseconds.
constexpr int lockWaitMs = 10000;

QString overrideDirectory()
{
    return qEnvironmentVariable(configDirVariable);
}

QString lockPath(const QString &file)
{
    return file + QStringLiteral(".lock");
}

// QLockFile::tryLock(timeout) doubles its sleep after each miss (100 ms, 200 ms, … up to 6.4 s), so
// among many writers one that missed a few times sleeps through every chance it gets and
// gives up while the others come and go. Asking again every few milliseconds keeps the
// waiters equal; each holder keeps the lock for milliseconds.
bool lockWithin(QLockFile &lock, int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    while (!lock.tryLock(0)) {
        if (lock.error() != QLockFile::LockFailedError || deadline.hasExpired()) {
            return false;
        }
        QThread::msleep(5);
    }
    return true;
}

// What must survive the round trip through the file: QSettings gives back text for every
// value it did not store as bytes.
QByteArray canonical(const QVariant &value)
{
    if (value.typeId() == QMetaType::QByteArray) {
        return QByteArrayLiteral("b:") + value.toByteArray();
    }
    return QByteArrayLiteral("s:") + value.toString().toUtf8();
}

// Makes the rename itself durable.
void syncDirectory(const QString &path)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}
} // namespace

Preferences::Preferences()
{
    const QString dir = overrideDirectory();
    if (dir.isEmpty()) {
        m_settings = std::make_unique<QSettings>(
            QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Zentrik"), QStringLiteral("Zentrik"));
    } else {
        QDir().mkpath(dir);
        m_settings
            = std::make_unique<QSettings>(QDir(dir).filePath(QStringLiteral("Zentrik.conf")), QSettings::IniFormat);
    }
    // Copies left by a write that was killed go as soon as nobody is writing.
    QLockFile lock(lockPath(fileName()));
    if (QFileInfo::exists(QFileInfo(fileName()).absolutePath()) && lock.tryLock(0)) {
        removeLeftovers();
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

bool Preferences::setString(const QString &key, const QString &value)
{
    return update([&](QVariantMap &values) {
        values.insert(key, value);
        return true;
    });
}

bool Preferences::setBoolean(const QString &key, bool value)
{
    return update([&](QVariantMap &values) {
        values.insert(key, value);
        return true;
    });
}

bool Preferences::setData(const QString &key, const QByteArray &value)
{
    return update([&](QVariantMap &values) {
        values.insert(key, value);
        return true;
    });
}

bool Preferences::remove(const QString &key)
{
    return update([&](QVariantMap &values) {
        values.remove(key);
        return true;
    });
}

bool Preferences::update(const std::function<bool(QVariantMap &values)> &edit)
{
    m_errorString.clear();
    const QString path = fileName();
    const QFileInfo info(path);
    if (!QDir().mkpath(info.absolutePath())) {
        m_errorString = QCoreApplication::translate("zentrik", "cannot create the folder %1").arg(info.absolutePath());
        return false;
    }
    // Transcripts and choices are nobody else's business. Only the others' rights go: a
    // folder its owner made read-only stays so, and the write below fails as it should.
    const QFileDevice::Permissions ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner
        | QFileDevice::ReadUser | QFileDevice::WriteUser | QFileDevice::ExeUser;
    const QFileDevice::Permissions folderPermissions = QFileInfo(info.absolutePath()).permissions();
    if ((folderPermissions & ~ownerOnly) != 0) {
        QFile::setPermissions(info.absolutePath(), folderPermissions & ownerOnly);
    }

    QLockFile lock(lockPath(path));
    if (!lockWithin(lock, lockWaitMs)) {
        m_errorString = lock.error() == QLockFile::LockFailedError
            ? QCoreApplication::translate("zentrik", "%1 stayed locked by another Zentrik process").arg(path)
            : QCoreApplication::translate("zentrik", "cannot lock %1 for writing").arg(path);
        return false;
    }
    removeLeftovers();
    if (info.exists() && !info.isWritable()) {
        m_errorString = QCoreApplication::translate("zentrik", "%1 is not writable").arg(path);
        return false;
    }
    m_settings->sync();
    if (m_settings->status() == QSettings::FormatError) {
        // Writing would drop whatever could not be parsed.
        m_errorString = QCoreApplication::translate("zentrik", "%1 cannot be read, so it was left as it is").arg(path);
        return false;
    }
    QVariantMap values;
    for (const QString &key : m_settings->allKeys()) {
        values.insert(key, m_settings->value(key));
    }
    if (!edit(values)) {
        return false;
    }
    return writeLocked(values);
}

bool Preferences::writeLocked(const QVariantMap &values)
{
    const QString path = fileName();
    const QFileInfo target(path);
    static std::atomic<int> serial { 0 };
    const QString stem = path + QLatin1String(scratchInfix) + QString::number(QCoreApplication::applicationPid())
        + QLatin1Char('-') + QString::number(serial++);
    const QString written = stem + QStringLiteral(".w");
    const QString checked = stem + QStringLiteral(".c");
    const auto failWith = [&](const QString &reason) {
        QFile::remove(written);
        QFile::remove(checked);
        m_errorString = QCoreApplication::translate("zentrik", "cannot write %1: %2").arg(path, reason);
        return false;
    };

    // QSettings writes the format; the result is read back under a name it has never seen
    // (so nothing cached answers) and compared, since a short write does not always show up
    // as an error.
    {
        QFile placeholder(written);
        if (!placeholder.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            return failWith(placeholder.errorString());
        }
        placeholder.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    }
    {
        QSettings writer(written, QSettings::IniFormat);
        writer.clear();
        for (auto it = values.cbegin(); it != values.cend(); ++it) {
            writer.setValue(it.key(), it.value());
        }
        writer.sync();
        if (writer.status() != QSettings::NoError) {
            return failWith(QCoreApplication::translate("zentrik", "the disk refused the data"));
        }
    }
    if (::rename(QFile::encodeName(written).constData(), QFile::encodeName(checked).constData()) != 0) {
        return failWith(QString::fromLocal8Bit(std::strerror(errno)));
    }
    {
        QSettings reader(checked, QSettings::IniFormat);
        QStringList keys = reader.allKeys();
        keys.sort();
        if (reader.status() != QSettings::NoError || keys != QStringList(values.keys())) {
            return failWith(
                QCoreApplication::translate("zentrik", "the written copy is incomplete (is the disk full?)"));
        }
        for (const QString &key : keys) {
            if (canonical(reader.value(key)) != canonical(values.value(key))) {
                return failWith(
                    QCoreApplication::translate("zentrik", "the written copy is incomplete (is the disk full?)"));
            }
        }
    }

    QFile copy(checked);
    if (!copy.open(QIODevice::ReadWrite) || ::fsync(copy.handle()) != 0) {
        return failWith(copy.errorString());
    }
    copy.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    // Readers notice a new version by its size and its time to the millisecond; two
    // versions written within one millisecond must still differ.
    if (target.exists()) {
        const QDateTime previous = target.lastModified();
        if (QDateTime::currentDateTime() <= previous) {
            copy.setFileTime(previous.addMSecs(1), QFileDevice::FileModificationTime);
        }
    }
    copy.close();
    if (::rename(QFile::encodeName(checked).constData(), QFile::encodeName(path).constData()) != 0) {
        return failWith(QString::fromLocal8Bit(std::strerror(errno)));
    }
    syncDirectory(target.absolutePath());
    m_settings->sync();
    return true;
}

void Preferences::removeLeftovers() const
{
    const QFileInfo target(fileName());
    const QDir dir = target.absoluteDir();
    const QString prefix = target.fileName() + QLatin1String(scratchInfix);
    for (const QString &name :
        dir.entryList({ prefix + QLatin1Char('*') }, QDir::Files | QDir::Hidden | QDir::System)) {
        QFile::remove(dir.filePath(name));
    }
}

QString Preferences::fileName() const
{
    return m_settings->fileName();
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
