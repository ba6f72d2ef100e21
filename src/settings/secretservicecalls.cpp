#include "settings/secretservicecalls.h"

#include "settings/secretstore.h"

Q_LOGGING_CATEGORY(lcSecrets, "zentrik.settings", QtInfoMsg)

namespace zentrik::secretcalls {

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

ErrorGuard::~ErrorGuard()
{
    if (error) {
        g_error_free(error);
    }
}

int classify(const GError *error, SecretDeadline &deadline)
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

Attributes::Attributes()
    : m_table(g_hash_table_new_full(g_str_hash, g_str_equal, g_free, g_free))
{ }

Attributes::~Attributes()
{
    g_hash_table_unref(m_table);
}

void Attributes::insert(const char *name, const QString &value)
{
    g_hash_table_insert(m_table, g_strdup(name), g_strdup(value.toUtf8().constData()));
}

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

SecretService *connectService(SecretDeadline &deadline, int &code)
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

std::optional<GList *> searchItems(
    const Attributes &attributes, SecretSearchFlags flags, SecretDeadline &deadline, int &code)
{
    SecretService *service = connectService(deadline, code);
    if (!service) {
        return std::nullopt;
    }
    ErrorGuard searchError;
    GList *items = secret_service_search_sync(
        service, genericPasswordSchema(), attributes.table(), flags, deadline.cancellable(), &searchError.error);
    g_object_unref(service);
    if (searchError.error) {
        code = classify(searchError.error, deadline);
        g_list_free_full(items, g_object_unref);
        return std::nullopt;
    }
    return items;
}

bool deleteMatching(const Attributes &attributes, SecretDeadline &deadline, int &code)
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
    return removed != FALSE;
}

} // namespace zentrik::secretcalls
