#pragma once

#include "settings/secretdeadline.h"

#include <QLoggingCategory>
#include <QString>
#include <QVariantMap>

#include <libsecret/secret.h>

#include <optional>

Q_DECLARE_LOGGING_CATEGORY(lcSecrets)

// The libsecret calls behind SecretStore, each bounded by the operation's deadline and
// reporting its outcome as a SecretStoreResult code.
namespace zentrik::secretcalls {

inline constexpr const char *attrAccount = "account";
inline constexpr const char *attrAccessible = "accessible";
inline constexpr const char *attrAccessGroup = "access_group";
inline constexpr const char *attrSynchronizable = "synchronizable";

// Items are told apart by account alone; the schema name only keeps clear() and allKeys()
// from reaching other programs' passwords.
[[nodiscard]] const SecretSchema *genericPasswordSchema();

struct ErrorGuard
{
    GError *error = nullptr;
    ErrorGuard() = default;
    ~ErrorGuard();
    ErrorGuard(const ErrorGuard &) = delete;
    ErrorGuard &operator=(const ErrorGuard &) = delete;
};

// The result code of a failed call.
[[nodiscard]] int classify(const GError *error, SecretDeadline &deadline);

// Attribute table of a query, owned by this object; keys and values are copied.
class Attributes
{
public:
    Attributes();
    ~Attributes();
    Attributes(const Attributes &) = delete;
    Attributes &operator=(const Attributes &) = delete;

    void insert(const char *name, const QString &value);
    [[nodiscard]] GHashTable *table() const { return m_table; }

private:
    GHashTable *m_table;
};

// Lookups, deletes and listings see the access group when one is set, and either only
// local items or, for a synchronisable store, both kinds ("any": the attribute is left out).
void addLookupScope(
    QVariantMap &query, Attributes &attributes, const std::optional<QString> &group, bool synchronizable);

// The session's Secret Service (a reference the caller drops), or null with code set.
[[nodiscard]] SecretService *connectService(SecretDeadline &deadline, int &code);

// The items of ours that match, a list the caller frees with
// g_list_free_full(items, g_object_unref); nothing when the search failed, with code set.
[[nodiscard]] std::optional<GList *> searchItems(
    const Attributes &attributes, SecretSearchFlags flags, SecretDeadline &deadline, int &code);

// Removes every item of ours that matches; true when at least one went.
bool deleteMatching(const Attributes &attributes, SecretDeadline &deadline, int &code);

} // namespace zentrik::secretcalls
