#pragma once

#include <QSqlDatabase>
#include <QString>
#include <QVariantList>

#include <optional>

class QSqlQuery;

namespace zentrik {

// One connection to the history database, used on the thread that opened it. Opening
// creates the file (readable by its owner only), switches on WAL, foreign keys and a busy
// timeout so that the window and the command line can write at the same time, and brings
// the schema to the current version, keeping a copy of the file beside it first. A file
// that is not a database or fails its check is moved aside, never deleted, and a new one
// is started; notice() then says so in one line.
class HistoryDatabase
{
public:
    explicit HistoryDatabase(QString path);
    ~HistoryDatabase();
    HistoryDatabase(const HistoryDatabase &) = delete;
    HistoryDatabase &operator=(const HistoryDatabase &) = delete;

    // True when the database is ready; otherwise error() says why, in one line.
    bool open();
    [[nodiscard]] bool isOpen() const { return m_open; }
    [[nodiscard]] QString path() const { return m_path; }
    [[nodiscard]] QString error() const { return m_error; }
    // For the user: a file that was moved aside, and where it went. Empty when nothing was.
    [[nodiscard]] QString notice() const { return m_notice; }
    // The copy kept before the last migration; empty when none was needed.
    [[nodiscard]] QString backupPath() const { return m_backupPath; }
    [[nodiscard]] QSqlDatabase connection() const;

    // A write transaction that waits for other writers (BEGIN IMMEDIATE), then COMMIT or
    // ROLLBACK. False with error() set when the statement failed.
    bool begin();
    bool commit();
    void rollback();

    // Prepares and runs one statement with positional values; false with error() set.
    bool run(QSqlQuery &query, const QString &sql, const QVariantList &values = {});
    // The first column of the first row, or nothing (error() set when the statement failed).
    [[nodiscard]] std::optional<QVariant> value(const QString &sql, const QVariantList &values = {});
    void setError(const QString &message);

    static constexpr int busyTimeoutMs = 5000;

private:
    enum class Attempt { ready, unreadable, failed };
    Attempt connect();
    bool execWaiting(QSqlQuery &query, const QString &sql);
    void disconnect();
    bool moveAside(const QString &reason);
    bool migrate();
    [[nodiscard]] QString sqlError(const class QSqlError &error) const;

    QString m_path;
    QString m_connectionName;
    bool m_open = false;
    QString m_error;
    QString m_notice;
    QString m_backupPath;
};

} // namespace zentrik
