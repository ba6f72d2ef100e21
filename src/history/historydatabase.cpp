#include "history/historydatabase.h"

#include "history/historylogging.h"
#include "history/historyschema.h"

#include <QAtomicInteger>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QThread>

namespace zentrik {

namespace {

// SQLite's result codes for a file that holds no database or a damaged one.
const QString sqliteCorrupt = QStringLiteral("11");
const QString sqliteNotADatabase = QStringLiteral("26");
const QString sqliteBusy = QStringLiteral("5");

QString nextConnectionName()
{
    static QAtomicInteger<quint64> counter;
    return QStringLiteral("zentrik-history-%1").arg(counter.fetchAndAddRelaxed(1));
}

bool isUnreadable(const QSqlError &error)
{
    return error.nativeErrorCode() == sqliteCorrupt || error.nativeErrorCode() == sqliteNotADatabase;
}

// The first free name "<path><suffix>", "<path><suffix>-2", …
QString freeName(const QString &path, const QString &suffix)
{
    QString candidate = path + suffix;
    for (int n = 2; QFileInfo::exists(candidate); ++n) {
        candidate = path + suffix + QStringLiteral("-%1").arg(n);
    }
    return candidate;
}

} // namespace

HistoryDatabase::HistoryDatabase(QString path)
    : m_path(std::move(path))
    , m_connectionName(nextConnectionName())
{ }

HistoryDatabase::~HistoryDatabase()
{
    disconnect();
}

QSqlDatabase HistoryDatabase::connection() const
{
    return QSqlDatabase::database(m_connectionName, false);
}

void HistoryDatabase::disconnect()
{
    if (QSqlDatabase::contains(m_connectionName)) {
        {
            QSqlDatabase db = QSqlDatabase::database(m_connectionName, false);
            db.close();
        }
        QSqlDatabase::removeDatabase(m_connectionName);
    }
    m_open = false;
}

void HistoryDatabase::setError(const QString &message)
{
    m_error = message;
    qCWarning(lcHistory).noquote() << message;
}

QString HistoryDatabase::sqlError(const QSqlError &error) const
{
    const QString text = error.databaseText().isEmpty() ? error.text() : error.databaseText();
    return QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(m_path), text);
}

bool HistoryDatabase::open()
{
    if (m_open) {
        return true;
    }
    m_error.clear();
    const QFileInfo info(m_path);
    QDir folder = info.dir();
    if (!folder.exists()) {
        if (!folder.mkpath(QStringLiteral("."))) {
            setError(QStringLiteral("Cannot create the folder %1").arg(QDir::toNativeSeparators(folder.path())));
            return false;
        }
        QFile::setPermissions(folder.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    if (!info.exists()) {
        // Created here rather than by SQLite so that only its owner can read it; SQLite gives
        // the WAL and its index the same permissions.
        QFile file(m_path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly)
            || !file.setPermissions(QFile::ReadOwner | QFile::WriteOwner)) {
            if (!QFileInfo::exists(m_path)) {
                setError(
                    QStringLiteral("Cannot create %1: %2").arg(QDir::toNativeSeparators(m_path), file.errorString()));
                return false;
            }
        }
    }
    Attempt attempt = connect();
    if (attempt == Attempt::unreadable) {
        const QString reason = m_error;
        disconnect();
        if (!moveAside(reason)) {
            return false;
        }
        attempt = connect();
    }
    if (attempt != Attempt::ready || !migrate()) {
        disconnect();
        return false;
    }
    m_open = true;
    return true;
}

HistoryDatabase::Attempt HistoryDatabase::connect()
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connectionName);
    if (!db.isValid()) {
        setError(QStringLiteral("Qt's SQLite driver is missing (install libqt6sql6-sqlite)"));
        return Attempt::failed;
    }
    db.setDatabaseName(m_path);
    db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(busyTimeoutMs));
    if (!db.open()) {
        setError(sqlError(db.lastError()));
        return isUnreadable(db.lastError()) ? Attempt::unreadable : Attempt::failed;
    }
    // SQLite reads the file only at the first statement, so a file that is no database
    // shows here; quick_check then finds damaged pages. Both only read: a file that is moved
    // aside, or one written by a newer version, is left exactly as it was.
    QSqlQuery query(db);
    if (!execWaiting(query, QStringLiteral("PRAGMA user_version")) || !query.next()) {
        setError(sqlError(query.lastError()));
        return isUnreadable(query.lastError()) ? Attempt::unreadable : Attempt::failed;
    }
    const int version = query.value(0).toInt();
    if (!execWaiting(query, QStringLiteral("PRAGMA quick_check(1)")) || !query.next()) {
        setError(sqlError(query.lastError()));
        return isUnreadable(query.lastError()) ? Attempt::unreadable : Attempt::failed;
    }
    if (query.value(0).toString() != QLatin1String("ok")) {
        setError(QStringLiteral("%1 fails its integrity check (%2)")
                     .arg(QDir::toNativeSeparators(m_path), query.value(0).toString().simplified()));
        return Attempt::unreadable;
    }
    if (version > historyschema::currentVersion()) {
        setError(QStringLiteral("%1 was written by a newer Zentrik (history format %2; this one reads up to %3)")
                     .arg(QDir::toNativeSeparators(m_path))
                     .arg(version)
                     .arg(historyschema::currentVersion()));
        return Attempt::failed;
    }
    for (const QString &pragma : { QStringLiteral("PRAGMA journal_mode = WAL"),
             QStringLiteral("PRAGMA synchronous = NORMAL"), QStringLiteral("PRAGMA foreign_keys = ON") }) {
        if (!execWaiting(query, pragma)) {
            setError(sqlError(query.lastError()));
            return Attempt::failed;
        }
    }
    return Attempt::ready;
}

bool HistoryDatabase::execWaiting(QSqlQuery &query, const QString &sql)
{
    // Switching a new file to WAL needs it to itself for a moment, and SQLite reports that
    // as busy at once instead of waiting: another process opening the same new file is
    // waited for here, for as long as any other write would be.
    QElapsedTimer waited;
    waited.start();
    while (!query.exec(sql)) {
        if (query.lastError().nativeErrorCode() != sqliteBusy || waited.elapsed() > busyTimeoutMs) {
            return false;
        }
        QThread::msleep(10);
    }
    return true;
}

bool HistoryDatabase::moveAside(const QString &reason)
{
    const QString suffix = QStringLiteral(".unreadable-%1")
                               .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss")));
    const QString target = freeName(m_path, suffix);
    if (!QFile::rename(m_path, target)) {
        setError(QStringLiteral("%1; it could not be moved aside to %2").arg(reason, QDir::toNativeSeparators(target)));
        return false;
    }
    // The log belongs with the file it was written for; the index beside it is rebuilt.
    for (const QString &companion : { QStringLiteral("-wal"), QStringLiteral("-journal") }) {
        if (QFileInfo::exists(m_path + companion)) {
            QFile::rename(m_path + companion, target + companion);
        }
    }
    QFile::remove(m_path + QStringLiteral("-shm"));
    m_notice = QCoreApplication::translate("zentrik::HistoryDatabase",
        "Conversation history could not be read; it was kept as %1 and a new history was started.")
                   .arg(QDir::toNativeSeparators(target));
    qCWarning(lcHistory).noquote() << reason << "- moved aside to" << target;
    // A fresh file, private as above.
    QFile file(m_path);
    if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    }
    return true;
}

bool HistoryDatabase::migrate()
{
    const auto readVersion = [this]() -> std::optional<int> {
        const std::optional<QVariant> version = value(QStringLiteral("PRAGMA user_version"));
        return version ? std::optional<int>(version->toInt()) : std::nullopt;
    };
    std::optional<int> version = readVersion();
    if (!version) {
        return false;
    }
    const int current = historyschema::currentVersion();
    if (*version > current) {
        setError(QStringLiteral("%1 was written by a newer Zentrik (history format %2; this one reads up to %3)")
                     .arg(QDir::toNativeSeparators(m_path))
                     .arg(*version)
                     .arg(current));
        return false;
    }
    if (*version == current) {
        return true;
    }
    if (*version > 0) {
        // A consistent copy of the whole file, the WAL's pages included, taken before any
        // statement of the migration runs.
        const QString backup = freeName(m_path, QStringLiteral(".v%1-backup").arg(*version));
        QSqlQuery query(connection());
        if (!run(query, QStringLiteral("VACUUM INTO ?"), { backup })) {
            setError(QStringLiteral("%1 was not updated: no copy could be kept (%2)")
                         .arg(QDir::toNativeSeparators(m_path), m_error));
            return false;
        }
        QFile::setPermissions(backup, QFile::ReadOwner | QFile::WriteOwner);
        m_backupPath = backup;
    }
    if (!begin()) {
        return false;
    }
    // Another process may have migrated while this one waited for the write lock.
    version = readVersion();
    if (!version) {
        rollback();
        return false;
    }
    QSqlQuery query(connection());
    for (int step = *version; step < current; ++step) {
        for (const QString &statement : historyschema::migrations().at(step)) {
            if (!query.exec(statement)) {
                setError(QStringLiteral("%1 could not be brought to history format %2: %3")
                             .arg(QDir::toNativeSeparators(m_path))
                             .arg(step + 1)
                             .arg(query.lastError().databaseText()));
                rollback();
                return false;
            }
        }
    }
    if (!query.exec(QStringLiteral("PRAGMA user_version = %1").arg(current))) {
        setError(sqlError(query.lastError()));
        rollback();
        return false;
    }
    if (*version > 0) {
        qCInfo(lcHistory).noquote() << "History brought from format" << *version << "to" << current << "; the copy"
                                    << m_backupPath << "is kept";
    }
    return commit();
}

bool HistoryDatabase::begin()
{
    QSqlQuery query(connection());
    return run(query, QStringLiteral("BEGIN IMMEDIATE"));
}

bool HistoryDatabase::commit()
{
    QSqlQuery query(connection());
    if (run(query, QStringLiteral("COMMIT"))) {
        return true;
    }
    rollback();
    return false;
}

// NOLINTNEXTLINE(readability-make-member-function-const): it changes the database
void HistoryDatabase::rollback()
{
    QSqlQuery query(connection());
    query.exec(QStringLiteral("ROLLBACK"));
}

bool HistoryDatabase::run(QSqlQuery &query, const QString &sql, const QVariantList &values)
{
    if (!query.prepare(sql)) {
        setError(sqlError(query.lastError()));
        return false;
    }
    for (const QVariant &value : values) {
        query.addBindValue(value);
    }
    if (!query.exec()) {
        setError(sqlError(query.lastError()));
        return false;
    }
    return true;
}

std::optional<QVariant> HistoryDatabase::value(const QString &sql, const QVariantList &values)
{
    QSqlQuery query(connection());
    if (!run(query, sql, values)) {
        return std::nullopt;
    }
    return query.next() ? query.value(0) : QVariant();
}

} // namespace zentrik
