#pragma once

#include "model/customprovider.h"
#include "settings/preferences.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>

#include <functional>
#include <variant>

namespace zentrik {

class HttpClient;
class KeyService;

// The user's custom OpenAI-compatible providers: kept in the preferences (names, addresses,
// models; never a key), their keys in the Secret Service, one account each. Every change is
// a locked read-modify-write of the stored list, so a window and a command line changing it
// at once lose nothing. Names are unique without regard to case.
class CustomProviders : public QObject
{
    Q_OBJECT

public:
    static constexpr const char *preferenceKey = "customProviders";

    // Without an HTTP client and a key service (both may be null) the list can be read and
    // changed, but no model listed and no key stored.
    CustomProviders(HttpClient *http, KeyService *keys, QObject *parent = nullptr);

    [[nodiscard]] const QList<CustomProvider> &list() const { return m_list; }
    // The provider of that name, compared without regard to case; null when there is none.
    [[nodiscard]] const CustomProvider *find(const QString &name) const;
    // Reads the stored list again (another process may have changed it).
    void reload();

    // The key read for a provider; empty when it has none or it was not read.
    [[nodiscard]] QString key(const QString &name) const { return m_keys.value(name.toCaseFolded()); }
    void setKey(const QString &name, const QString &key);
    // The accounts of the providers that keep a key.
    [[nodiscard]] QStringList keyAccounts() const;

    // Empty on success, otherwise one line saying what went wrong; nothing was changed then.
    using Completion = std::function<void(const QString &error)>;
    using ModelsCompletion = std::function<void(const std::variant<QStringList, QString> &modelsOrError)>;

    // Adds a provider: checks the name (unique), the address and the key, stores the key (if
    // given) and then the entry. A key that cannot be stored adds nothing; an entry that
    // cannot be written takes its key away again. The completion runs on this object's
    // thread, never from inside the call and never after `context` (when given) is gone.
    void add(const QString &name, const QString &baseUrl, const QString &key, QObject *context, Completion done);
    // Removes the provider and its key; removed() tells whoever streams from it.
    [[nodiscard]] QString remove(const QString &name);
    // Asks the server for its models (GET <base>/models) and keeps the list it gives.
    void refreshModels(const QString &name, QObject *context, const ModelsCompletion &done);
    // Keeps this list as the one the server gives (from a detection that just read it).
    [[nodiscard]] QString setListedModels(const QString &name, const QStringList &models);
    // A model typed by hand, for servers that list none.
    [[nodiscard]] QString addModel(const QString &name, const QString &model);
    [[nodiscard]] QString removeModel(const QString &name, const QString &model);

Q_SIGNALS:
    void changed();
    void removed(const QString &name);

private:
    // Applies edit to the stored list under the preferences' lock and keeps the result;
    // the error line when it could not be written, or the one edit gave.
    [[nodiscard]] QString change(const std::function<QString(QList<CustomProvider> &providers)> &edit);
    [[nodiscard]] QList<CustomProvider> read() const;
    void publish(const QList<CustomProvider> &providers);

    QPointer<HttpClient> m_http;
    KeyService *m_keyService;
    Preferences m_preferences;
    QList<CustomProvider> m_list;
    // By case-folded provider name.
    QHash<QString, QString> m_keys;
};

} // namespace zentrik
