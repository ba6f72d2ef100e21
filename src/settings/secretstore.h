#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <chrono>
#include <mutex>
#include <optional>

namespace zentrik {

class SecretDeadline;

// How long an item may be read after the device is unlocked. Stored as the item's
// "accessible" attribute so that a store shared with other platforms keeps the intent.
enum class SecretAccessOption {
    accessibleWhenUnlocked,
    accessibleWhenUnlockedThisDeviceOnly,
    accessibleAfterFirstUnlock,
    accessibleAfterFirstUnlockThisDeviceOnly,
    accessibleWhenPasscodeSetThisDeviceOnly,
};

[[nodiscard]] QString secretAccessOptionName(SecretAccessOption option);

// Result codes of the last call; stable so that callers and logs can tell failures apart.
enum SecretStoreResult : int {
    secretSuccess = 0,
    secretNotFound = 1, // no item matched
    secretNoService = 2, // no Secret Service reachable on the session bus (or it did not answer in time)
    secretLocked = 3, // the collection or item is locked and we do not prompt
    secretOtherFailure = 4, // anything else the service reported
    secretTimedOut = 5, // a Secret Service owns the bus name but did not answer in time
    secretNoKeyring = 6, // the service has no default keyring to store an item in
};

// API keys as generic-password items in the desktop's Secret Service (GNOME Keyring,
// KWallet), one item per account. Every read goes to the service; nothing is cached and
// nothing is ever written to a plain file. Every public call holds one lock for its whole
// run, so an instance may be shared between threads, and every call gives up within
// timeoutMs in total (or at the deadline set with setDeadline()) instead of waiting on an
// unreachable bus, a hung service or an unlock prompt.
class SecretStore
{
public:
    SecretStore() = default;

    bool set(const QString &text, const QString &key, std::optional<SecretAccessOption> access = std::nullopt);
    bool set(const QByteArray &data, const QString &key, std::optional<SecretAccessOption> access = std::nullopt);
    [[nodiscard]] std::optional<QString> get(const QString &key);
    // With asReference the answer is the item's object path on the bus instead of its secret.
    [[nodiscard]] std::optional<QByteArray> getData(const QString &key, bool asReference = false);
    bool remove(const QString &key);
    bool clear();
    [[nodiscard]] QStringList allKeys();

    [[nodiscard]] int lastResultCode() const;
    // The last query handed to the service, for inspection. A secret's bytes are never
    // kept here: an add records only their length.
    [[nodiscard]] QVariantMap lastQueryParameters() const;

    [[nodiscard]] QString keyPrefix() const;
    void setKeyPrefix(const QString &prefix);
    [[nodiscard]] std::optional<QString> accessGroup() const;
    void setAccessGroup(const std::optional<QString> &group);
    [[nodiscard]] bool synchronizable() const;
    void setSynchronizable(bool value);

    // Whether a Secret Service answers on the session bus; for the settings screen.
    [[nodiscard]] bool isAvailable();

    static constexpr int timeoutMs = 2000;

    using Clock = std::chrono::steady_clock;
    // Every following call gives up at this moment instead of timeoutMs after it starts, so
    // that several calls that make up one operation share one time limit.
    void setDeadline(Clock::time_point deadline);
    // Makes the call in progress give up at once (as if its time were up); for a shutdown
    // that must not wait for a service that does not answer. Safe from any thread.
    void cancelCurrentCall();

private:
    bool removeLocked(const QString &key, SecretDeadline &deadline);
    [[nodiscard]] Clock::time_point operationDeadline() const;

    mutable std::mutex m_lock;
    QVariantMap m_lastQueryParameters;
    int m_lastResultCode = secretSuccess;
    QString m_keyPrefix;
    std::optional<QString> m_accessGroup;
    bool m_synchronizable = false;
    std::optional<Clock::time_point> m_deadline;

    // Guards the call in progress for cancelCurrentCall(), which must not wait for m_lock.
    std::mutex m_abortLock;
    SecretDeadline *m_running = nullptr;
    friend class RunningCall;
};

} // namespace zentrik
