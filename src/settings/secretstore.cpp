#include "settings/secretstore.h"

#include <QLoggingCategory>

#include <libsecret/secret.h>

#include <chrono>
#include <condition_variable>
#include <thread>

Q_LOGGING_CATEGORY(lcSecrets, "zentrik.settings", QtInfoMsg)

namespace zentrik {

// Cancels the libsecret calls of one public operation once its time is up, so that an
// unreachable bus or a service that waits on a prompt never hangs the caller. One object
// covers every call of the operation: a set that first removes the old item still gives
// up at the one deadline.
class SecretStore::Deadline
{
public:
    explicit Deadline(Clock::time_point at)
        : m_cancellable(g_cancellable_new())
        , m_watcher([this, at] {
            std::unique_lock guard(m_mutex);
            if (!m_finished.wait_until(guard, at, [this] { return m_done || m_expired; })) {
                m_expired = true;
            }
            if (m_expired) {
                g_cancellable_cancel(m_cancellable);
            }
        })
    { }
    ~Deadline()
    {
        {
            std::lock_guard guard(m_mutex);
            m_done = true;
        }
        m_finished.notify_all();
        m_watcher.join();
        g_object_unref(m_cancellable);
    }
    Deadline(const Deadline &) = delete;
    Deadline &operator=(const Deadline &) = delete;

    [[nodiscard]] GCancellable *cancellable() const { return m_cancellable; }
    [[nodiscard]] bool expired()
    {
        std::lock_guard guard(m_mutex);
        return m_expired;
    }
    void expireNow()
    {
        {
            std::lock_guard guard(m_mutex);
            m_expired = true;
        }
        m_finished.notify_all();
    }

private:
    GCancellable *m_cancellable;
    std::mutex m_mutex;
    std::condition_variable m_finished;
    bool m_done = false;
    bool m_expired = false;
    std::thread m_watcher;
};

// Makes the operation's deadline reachable from cancelCurrentCall() while it runs.
class RunningCall
{
public:
    RunningCall(SecretStore &store, SecretStore::Deadline &deadline)
        : m_store(store)
    {
        std::lock_guard guard(m_store.m_abortLock);
        m_store.m_running = &deadline;
    }
    ~RunningCall()
    {
        std::lock_guard guard(m_store.m_abortLock);
        m_store.m_running = nullptr;
    }
    RunningCall(const RunningCall &) = delete;
    RunningCall &operator=(const RunningCall &) = delete;

private:
    SecretStore &m_store;
};

namespace {

const char *const attrAccount = "account";
const char *const attrAccessible = "accessible";
const char *const attrAccessGroup = "access_group";
const char *const attrSynchronizable = "synchronizable";

// Items are told apart by account alone; the schema name only keeps clear() and allKeys()
// from reaching other programs' passwords.
const SecretSchema *genericPasswordSchema()
{
    static const SecretSchema schema = [] {
        SecretSchema s {};
        s.name = "app.zentrik.GenericPassword";
        s.flags = SECRET_SCHEMA_NONE;
        s.attributes[0] = { attrAccount, SECRET_SCHEMA_ATTRIBUTE_STRING };
        s.attributes[1] = { attrAccessible, SECRET_SCHEMA_ATTRIBUTE_STRING };
        s.attributes[2] = { attrAccessGroup, SECRET_SCHEMA_ATTRIBUTE_STRING };
        s.attributes[3] = { attrSynchronizable, SECRET_SCHEMA_ATTRIBUTE_STRING };
        s.attributes[4] = { nullptr, SECRET_SCHEMA_ATTRIBUTE_STRING };
        return s;
    }();
    return &schema;
}

struct ErrorGuard
{
    GError *error = nullptr;
    ~ErrorGuard()
    {
        if (error) {
            g_error_free(error);
        }
    }
};

using Deadline = SecretStore::Deadline;

int classify(const GError *error, Deadline &deadline)
{
    if (deadline.expired()) {
        return secretTimedOut;
    }
    if (!error) {
        return secretOtherFailure;
    }
    if (error->domain == SECRET_ERROR && error->code == SECRET_ERROR_IS_LOCKED) {
        return secretLocked;
    }
    if (error->domain == SECRET_ERROR && error->code == SECRET_ERROR_NO_SUCH_OBJECT) {
        return secretNotFound;
    }
    if (error->domain == G_DBUS_ERROR || error->domain == G_IO_ERROR || error->domain == G_SPAWN_ERROR) {
        return secretNoService;
    }
    return secretOtherFailure;
}

// Attribute table of a query, owned by this object; keys and values are copied.
class Attributes
{
public:
    Attributes()
        : m_table(g_hash_table_new_full(g_str_hash, g_str_equal, g_free, g_free))
    { }
    ~Attributes() { g_hash_table_unref(m_table); }
    Attributes(const Attributes &) = delete;
    Attributes &operator=(const Attributes &) = delete;

    void insert(const char *name, const QString &value)
    {
        g_hash_table_insert(m_table, g_strdup(name), g_strdup(value.toUtf8().constData()));
    }
    [[nodiscard]] GHashTable *table() const { return m_table; }

private:
    GHashTable *m_table;
};

SecretService *connectService(Deadline &deadline, int &code);

// Lookups, deletes and listings see the access group when one is set, and either only
// local items or, for a synchronisable store, both kinds ("any": the attribute is left out).
void addLookupScope(
    QVariantMap &query, Attributes &attributes, const std::optional<QString> &group, bool synchronizable)
{
    if (group) {
        query.insert(QStringLiteral("accessGroup"), *group);
        attributes.insert(attrAccessGroup, *group);
    }
    if (synchronizable) {
        query.insert(QStringLiteral("synchronizable"), QStringLiteral("any"));
    } else {
        attributes.insert(attrSynchronizable, QStringLiteral("false"));
    }
}

// Removes every item of ours that matches; true when at least one went.
bool deleteMatching(const Attributes &attributes, Deadline &deadline, int &code)
{
    SecretService *service = connectService(deadline, code);
    if (!service) {
        return false;
    }
    ErrorGuard clearError;
    const gboolean removed = secret_service_clear_sync(
        service, genericPasswordSchema(), attributes.table(), deadline.cancellable(), &clearError.error);
    g_object_unref(service);
    if (clearError.error) {
        code = classify(clearError.error, deadline);
        return false;
    }
    code = removed ? secretSuccess : secretNotFound;
    return removed;
}

SecretService *connectService(Deadline &deadline, int &code)
{
    ErrorGuard guard;
    SecretService *service = secret_service_get_sync(SECRET_SERVICE_NONE, deadline.cancellable(), &guard.error);
    if (!service) {
        code = classify(guard.error, deadline);
        if (code == secretOtherFailure || code == secretNotFound) {
            code = secretNoService;
        }
        qCDebug(lcSecrets) << "Secret Service not reachable:" << (guard.error ? guard.error->message : "timed out");
    }
    return service;
}

} // namespace

QString secretAccessOptionName(SecretAccessOption option)
{
    switch (option) {
    case SecretAccessOption::accessibleWhenUnlocked:
        return QStringLiteral("accessibleWhenUnlocked");
    case SecretAccessOption::accessibleWhenUnlockedThisDeviceOnly:
        return QStringLiteral("accessibleWhenUnlockedThisDeviceOnly");
    case SecretAccessOption::accessibleAfterFirstUnlock:
        return QStringLiteral("accessibleAfterFirstUnlock");
    case SecretAccessOption::accessibleAfterFirstUnlockThisDeviceOnly:
        return QStringLiteral("accessibleAfterFirstUnlockThisDeviceOnly");
    case SecretAccessOption::accessibleWhenPasscodeSetThisDeviceOnly:
        return QStringLiteral("accessibleWhenPasscodeSetThisDeviceOnly");
    }
    return QStringLiteral("accessibleWhenUnlocked");
}

bool SecretStore::set(const QString &text, const QString &key, std::optional<SecretAccessOption> access)
{
    return set(text.toUtf8(), key, access);
}

bool SecretStore::set(const QByteArray &data, const QString &key, std::optional<SecretAccessOption> access)
{
    std::lock_guard lock(m_lock);
    Deadline deadline(operationDeadline());
    const RunningCall running(*this, deadline);
    // A set always replaces: whatever stood under the account goes first.
    removeLocked(key, deadline);
    if (m_lastResultCode != secretSuccess && m_lastResultCode != secretNotFound) {
        return false;
    }

    const QString account = m_keyPrefix + key;
    const QString accessible = secretAccessOptionName(access.value_or(SecretAccessOption::accessibleWhenUnlocked));
    QVariantMap query { { QStringLiteral("class"), QStringLiteral("genericPassword") },
        { QStringLiteral("account"), account }, { QStringLiteral("valueLength"), data.size() },
        { QStringLiteral("accessible"), accessible } };
    Attributes attributes;
    attributes.insert(attrAccount, account);
    attributes.insert(attrAccessible, accessible);
    if (m_accessGroup) {
        query.insert(QStringLiteral("accessGroup"), *m_accessGroup);
        attributes.insert(attrAccessGroup, *m_accessGroup);
    }
    const QString synchronizable = m_synchronizable ? QStringLiteral("true") : QStringLiteral("false");
    if (m_synchronizable) {
        query.insert(QStringLiteral("synchronizable"), true);
    }
    attributes.insert(attrSynchronizable, synchronizable);
    m_lastQueryParameters = query;

    SecretService *service = connectService(deadline, m_lastResultCode);
    if (!service) {
        return false;
    }
    // Refuse rather than raise an unlock or create-keyring prompt nobody may be there to answer.
    ErrorGuard aliasError;
    SecretCollection *collection = secret_collection_for_alias_sync(
        service, SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, deadline.cancellable(), &aliasError.error);
    if (!collection) {
        m_lastResultCode = aliasError.error ? classify(aliasError.error, deadline) : secretNoKeyring;
        if (!aliasError.error) {
            qCWarning(lcSecrets) << "The Secret Service has no default keyring to store keys in";
        }
        g_object_unref(service);
        return false;
    }
    const bool locked = secret_collection_get_locked(collection);
    g_object_unref(collection);
    if (locked) {
        m_lastResultCode = secretLocked;
        g_object_unref(service);
        return false;
    }

    SecretValue *value = secret_value_new(data.constData(), data.size(), "text/plain");
    const QByteArray label = QStringLiteral("Zentrik: %1").arg(account).toUtf8();
    ErrorGuard storeError;
    const gboolean stored = secret_service_store_sync(service, genericPasswordSchema(), attributes.table(),
        SECRET_COLLECTION_DEFAULT, label.constData(), value, deadline.cancellable(), &storeError.error);
    secret_value_unref(value);
    g_object_unref(service);
    m_lastResultCode = stored ? secretSuccess : classify(storeError.error, deadline);
    return stored;
}

std::optional<QString> SecretStore::get(const QString &key)
{
    const std::optional<QByteArray> data = getData(key);
    if (!data) {
        return std::nullopt;
    }
    return QString::fromUtf8(*data);
}

std::optional<QByteArray> SecretStore::getData(const QString &key, bool asReference)
{
    std::lock_guard lock(m_lock);
    const QString account = m_keyPrefix + key;
    QVariantMap query { { QStringLiteral("class"), QStringLiteral("genericPassword") },
        { QStringLiteral("account"), account }, { QStringLiteral("matchLimit"), QStringLiteral("one") } };
    query.insert(asReference ? QStringLiteral("returnPersistentRef") : QStringLiteral("returnData"), true);
    Attributes attributes;
    attributes.insert(attrAccount, account);
    addLookupScope(query, attributes, m_accessGroup, m_synchronizable);
    m_lastQueryParameters = query;

    Deadline deadline(operationDeadline());
    const RunningCall running(*this, deadline);
    SecretService *service = connectService(deadline, m_lastResultCode);
    if (!service) {
        return std::nullopt;
    }
    const auto flags = static_cast<SecretSearchFlags>(asReference ? SECRET_SEARCH_NONE : SECRET_SEARCH_LOAD_SECRETS);
    ErrorGuard searchError;
    GList *items = secret_service_search_sync(
        service, genericPasswordSchema(), attributes.table(), flags, deadline.cancellable(), &searchError.error);
    g_object_unref(service);
    if (searchError.error) {
        m_lastResultCode = classify(searchError.error, deadline);
        g_list_free_full(items, g_object_unref);
        return std::nullopt;
    }
    if (!items) {
        m_lastResultCode = secretNotFound;
        return std::nullopt;
    }
    auto *item = static_cast<SecretItem *>(items->data);
    std::optional<QByteArray> result;
    if (asReference) {
        result = QByteArray(g_dbus_proxy_get_object_path(G_DBUS_PROXY(item)));
        m_lastResultCode = secretSuccess;
    } else if (secret_item_get_locked(item)) {
        m_lastResultCode = secretLocked;
    } else if (SecretValue *value = secret_item_get_secret(item)) {
        gsize length = 0;
        const gchar *bytes = secret_value_get(value, &length);
        result = QByteArray(bytes, qsizetype(length));
        secret_value_unref(value);
        m_lastResultCode = secretSuccess;
    } else {
        m_lastResultCode = secretOtherFailure;
    }
    g_list_free_full(items, g_object_unref);
    return result;
}

bool SecretStore::remove(const QString &key)
{
    std::lock_guard lock(m_lock);
    Deadline deadline(operationDeadline());
    const RunningCall running(*this, deadline);
    return removeLocked(key, deadline);
}

bool SecretStore::removeLocked(const QString &key, Deadline &deadline)
{
    const QString account = m_keyPrefix + key;
    QVariantMap query { { QStringLiteral("class"), QStringLiteral("genericPassword") },
        { QStringLiteral("account"), account } };
    Attributes attributes;
    attributes.insert(attrAccount, account);
    addLookupScope(query, attributes, m_accessGroup, m_synchronizable);
    m_lastQueryParameters = query;

    return deleteMatching(attributes, deadline, m_lastResultCode);
}

bool SecretStore::clear()
{
    std::lock_guard lock(m_lock);
    QVariantMap query { { QStringLiteral("class"), QStringLiteral("genericPassword") } };
    Attributes attributes;
    addLookupScope(query, attributes, m_accessGroup, m_synchronizable);
    m_lastQueryParameters = query;

    Deadline deadline(operationDeadline());
    const RunningCall running(*this, deadline);
    return deleteMatching(attributes, deadline, m_lastResultCode);
}

QStringList SecretStore::allKeys()
{
    std::lock_guard lock(m_lock);
    QVariantMap query { { QStringLiteral("class"), QStringLiteral("genericPassword") },
        { QStringLiteral("returnData"), true }, { QStringLiteral("returnAttributes"), true },
        { QStringLiteral("returnPersistentRef"), true }, { QStringLiteral("matchLimit"), QStringLiteral("all") } };
    Attributes attributes;
    addLookupScope(query, attributes, m_accessGroup, m_synchronizable);
    m_lastQueryParameters = query;

    Deadline deadline(operationDeadline());
    const RunningCall running(*this, deadline);
    SecretService *service = connectService(deadline, m_lastResultCode);
    if (!service) {
        return {};
    }
    ErrorGuard searchError;
    GList *items = secret_service_search_sync(service, genericPasswordSchema(), attributes.table(), SECRET_SEARCH_ALL,
        deadline.cancellable(), &searchError.error);
    g_object_unref(service);
    if (searchError.error) {
        m_lastResultCode = classify(searchError.error, deadline);
        g_list_free_full(items, g_object_unref);
        return {};
    }
    QStringList accounts;
    for (GList *node = items; node; node = node->next) {
        GHashTable *itemAttributes = secret_item_get_attributes(static_cast<SecretItem *>(node->data));
        if (const auto *account = static_cast<const char *>(g_hash_table_lookup(itemAttributes, attrAccount))) {
            accounts.append(QString::fromUtf8(account));
        }
        g_hash_table_unref(itemAttributes);
    }
    g_list_free_full(items, g_object_unref);
    accounts.sort();
    m_lastResultCode = accounts.isEmpty() ? secretNotFound : secretSuccess;
    return accounts;
}

bool SecretStore::isAvailable()
{
    std::lock_guard lock(m_lock);
    Deadline deadline(operationDeadline());
    const RunningCall running(*this, deadline);
    SecretService *service = connectService(deadline, m_lastResultCode);
    if (!service) {
        return false;
    }
    g_object_unref(service);
    m_lastResultCode = secretSuccess;
    return true;
}

void SecretStore::setDeadline(Clock::time_point deadline)
{
    std::lock_guard lock(m_lock);
    m_deadline = deadline;
}

void SecretStore::clearDeadline()
{
    std::lock_guard lock(m_lock);
    m_deadline.reset();
}

SecretStore::Clock::time_point SecretStore::operationDeadline() const
{
    return m_deadline.value_or(Clock::now() + std::chrono::milliseconds(timeoutMs));
}

void SecretStore::cancelCurrentCall()
{
    std::lock_guard guard(m_abortLock);
    if (m_running) {
        m_running->expireNow();
    }
}

int SecretStore::lastResultCode() const
{
    std::lock_guard lock(m_lock);
    return m_lastResultCode;
}

QVariantMap SecretStore::lastQueryParameters() const
{
    std::lock_guard lock(m_lock);
    return m_lastQueryParameters;
}

QString SecretStore::keyPrefix() const
{
    std::lock_guard lock(m_lock);
    return m_keyPrefix;
}

void SecretStore::setKeyPrefix(const QString &prefix)
{
    std::lock_guard lock(m_lock);
    m_keyPrefix = prefix;
}

std::optional<QString> SecretStore::accessGroup() const
{
    std::lock_guard lock(m_lock);
    return m_accessGroup;
}

void SecretStore::setAccessGroup(const std::optional<QString> &group)
{
    std::lock_guard lock(m_lock);
    m_accessGroup = group;
}

bool SecretStore::synchronizable() const
{
    std::lock_guard lock(m_lock);
    return m_synchronizable;
}

void SecretStore::setSynchronizable(bool value)
{
    std::lock_guard lock(m_lock);
    m_synchronizable = value;
}

} // namespace zentrik
