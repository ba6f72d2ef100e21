#include "settings/secretstore.h"

#include "settings/secretdeadline.h"
#include "settings/secretservicecalls.h"

namespace zentrik {

using namespace secretcalls;

// Makes the operation's deadline reachable from cancelCurrentCall() while it runs.
class RunningCall
{
public:
    RunningCall(SecretStore &store, SecretDeadline &deadline)
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
    SecretDeadline deadline(operationDeadline());
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
    const bool locked = secret_collection_get_locked(collection) != FALSE;
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
    return stored != FALSE;
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

    SecretDeadline deadline(operationDeadline());
    const RunningCall running(*this, deadline);
    const auto flags = static_cast<SecretSearchFlags>(asReference ? SECRET_SEARCH_NONE : SECRET_SEARCH_LOAD_SECRETS);
    const std::optional<GList *> found = searchItems(attributes, flags, deadline, m_lastResultCode);
    if (!found) {
        return std::nullopt;
    }
    GList *items = *found;
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
    SecretDeadline deadline(operationDeadline());
    const RunningCall running(*this, deadline);
    return removeLocked(key, deadline);
}

bool SecretStore::removeLocked(const QString &key, SecretDeadline &deadline)
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

    SecretDeadline deadline(operationDeadline());
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

    SecretDeadline deadline(operationDeadline());
    const RunningCall running(*this, deadline);
    const std::optional<GList *> items = searchItems(attributes, SECRET_SEARCH_ALL, deadline, m_lastResultCode);
    if (!items) {
        return {};
    }
    QStringList accounts;
    for (GList *node = *items; node; node = node->next) {
        GHashTable *itemAttributes = secret_item_get_attributes(static_cast<SecretItem *>(node->data));
        if (const auto *account = static_cast<const char *>(g_hash_table_lookup(itemAttributes, attrAccount))) {
            accounts.append(QString::fromUtf8(account));
        }
        g_hash_table_unref(itemAttributes);
    }
    g_list_free_full(*items, g_object_unref);
    accounts.sort();
    m_lastResultCode = accounts.isEmpty() ? secretNotFound : secretSuccess;
    return accounts;
}

bool SecretStore::isAvailable()
{
    std::lock_guard lock(m_lock);
    SecretDeadline deadline(operationDeadline());
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
