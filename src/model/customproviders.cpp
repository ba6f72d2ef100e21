#include "model/customproviders.h"

#include "chat/openaichatclient.h"
#include "model/deliverlater.h"
#include "model/modellogging.h"
#include "net/httpclient.h"
#include "settings/apikeycheck.h"
#include "settings/keyservice.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace zentrik {

namespace {

QList<CustomProvider> parse(const QByteArray &stored)
{
    QList<CustomProvider> providers;
    for (const auto &entry : QJsonDocument::fromJson(stored).array()) {
        std::optional<CustomProvider> provider = CustomProvider::fromJson(entry.toObject());
        const bool taken
            = provider && std::any_of(providers.begin(), providers.end(), [&](const CustomProvider &other) {
                  return other.name.compare(provider->name, Qt::CaseInsensitive) == 0;
              });
        if (provider && !taken) {
            providers.append(*std::move(provider));
        }
    }
    return providers;
}

QByteArray serialize(const QList<CustomProvider> &providers)
{
    QJsonArray array;
    for (const CustomProvider &provider : providers) {
        array.append(provider.toJson());
    }
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

CustomProvider *findIn(QList<CustomProvider> &providers, const QString &name)
{
    for (CustomProvider &provider : providers) {
        if (provider.name.compare(name, Qt::CaseInsensitive) == 0) {
            return &provider;
        }
    }
    return nullptr;
}

QString noSuchProvider(const QString &name)
{
    return CustomProviders::tr("There is no provider named \"%1\".").arg(name);
}

} // namespace

CustomProviders::CustomProviders(HttpClient *http, KeyService *keys, QObject *parent)
    : QObject(parent)
    , m_http(http)
    , m_keyService(keys)
    , m_list(read())
{ }

QList<CustomProvider> CustomProviders::read() const
{
    return parse(m_preferences.data(QString::fromLatin1(preferenceKey)));
}

void CustomProviders::reload()
{
    publish(read());
}

void CustomProviders::publish(const QList<CustomProvider> &providers)
{
    if (providers == m_list) {
        return;
    }
    m_list = providers;
    Q_EMIT changed();
}

const CustomProvider *CustomProviders::find(const QString &name) const
{
    for (const CustomProvider &provider : m_list) {
        if (provider.name.compare(name, Qt::CaseInsensitive) == 0) {
            return &provider;
        }
    }
    return nullptr;
}

void CustomProviders::setKey(const QString &name, const QString &key)
{
    if (key.isEmpty()) {
        m_keys.remove(name.toCaseFolded());
    } else {
        m_keys.insert(name.toCaseFolded(), key);
    }
}

QStringList CustomProviders::keyAccounts() const
{
    QStringList accounts;
    for (const CustomProvider &provider : m_list) {
        if (provider.hasKey) {
            accounts.append(provider.keyAccount());
        }
    }
    return accounts;
}

QString CustomProviders::change(const std::function<QString(QList<CustomProvider> &providers)> &edit)
{
    const QString key = QString::fromLatin1(preferenceKey);
    QList<CustomProvider> providers;
    QString refusal;
    const bool written = m_preferences.update([&](QVariantMap &values) {
        providers = parse(values.value(key).toByteArray());
        refusal = edit(providers);
        if (!refusal.isEmpty()) {
            return false;
        }
        values.insert(key, serialize(providers));
        return true;
    });
    if (!refusal.isEmpty()) {
        return refusal;
    }
    if (!written) {
        return tr("The providers could not be saved: %1").arg(m_preferences.errorString());
    }
    publish(providers);
    return {};
}

void CustomProviders::add(
    const QString &name, const QString &baseUrl, const QString &key, QObject *context, Completion done)
{
    // The entry is written even when the asker has gone: the key is stored by then.
    const QPointer<QObject> guard(context);
    const Completion reply = [guard, hasContext = context != nullptr, done](const QString &error) {
        if (!hasContext || !guard.isNull()) {
            done(error);
        }
    };
    const auto refuse = [&](const QString &error) { deliverLater(this, context, [done, error] { done(error); }); };
    if (const std::optional<QString> problem = providerNameProblem(name)) {
        return refuse(*problem);
    }
    if (find(name) != nullptr) {
        return refuse(tr("There is already a provider named \"%1\".").arg(find(name)->name));
    }
    const auto url = normalizedProviderUrl(baseUrl);
    if (const auto *problem = std::get_if<QString>(&url)) {
        return refuse(*problem);
    }
    if (!key.isEmpty() && m_keyService == nullptr) {
        return refuse(tr("The key cannot be stored from here."));
    }
    if (const std::optional<QString> problem = apiKeyProblem(key)) {
        return refuse(tr("The key contains %1; API keys are printable ASCII characters without spaces.").arg(*problem));
    }
    CustomProvider provider;
    provider.name = name;
    provider.baseUrl = std::get<QUrl>(url);
    provider.hasKey = !key.isEmpty();

    const auto store = [this, provider, key, reply] {
        const QString error = change([&provider](QList<CustomProvider> &providers) {
            if (const CustomProvider *other = findIn(providers, provider.name)) {
                return tr("There is already a provider named \"%1\".").arg(other->name);
            }
            providers.append(provider);
            return QString();
        });
        if (!error.isEmpty() && provider.hasKey && m_keyService != nullptr) {
            m_keyService->write({ { provider.keyAccount(), QString() } }, this, [](const KeyService::Outcome &) {});
        } else if (error.isEmpty()) {
            setKey(provider.name, key);
        }
        reply(error);
    };
    if (!provider.hasKey) {
        deliverLater(this, this, store);
        return;
    }
    m_keyService->write({ { provider.keyAccount(), key } }, this, [store, reply](const KeyService::Outcome &outcome) {
        if (!outcome.succeeded()) {
            reply(tr("The key could not be stored, so the provider was not added: %1")
                      .arg(KeyService::describe(outcome.code)));
            return;
        }
        store();
    });
}

QString CustomProviders::remove(const QString &name)
{
    bool hadKey = false;
    QString removedName;
    QString error = change([&](QList<CustomProvider> &providers) {
        const CustomProvider *provider = findIn(providers, name);
        if (provider == nullptr) {
            return noSuchProvider(name);
        }
        hadKey = provider->hasKey;
        removedName = provider->name;
        providers.removeIf([&](const CustomProvider &p) { return p.name == removedName; });
        return QString();
    });
    if (!error.isEmpty()) {
        return error;
    }
    setKey(removedName, QString());
    if (hadKey && m_keyService != nullptr) {
        m_keyService->write({ { CustomProvider::keyAccountFor(removedName), QString() } }, this,
            [removedName](const KeyService::Outcome &outcome) {
                if (!outcome.succeeded()) {
                    qCWarning(lcModel).noquote() << QStringLiteral("The key of the removed provider %1 could not be "
                                                                   "deleted from the Secret Service: %2")
                                                        .arg(removedName, KeyService::describe(outcome.code));
                }
            });
    }
    Q_EMIT removed(removedName);
    return {};
}

void CustomProviders::refreshModels(const QString &name, QObject *context, const ModelsCompletion &done)
{
    const CustomProvider *provider = find(name);
    if (provider == nullptr || m_http.isNull()) {
        const QString error = noSuchProvider(name);
        deliverLater(this, context, [done, error] { done(error); });
        return;
    }
    const QString providerName = provider->name;
    const OpenAIChatClient client(m_http, key(providerName), provider->chatUrl(), provider->modelsUrl());
    client.listModels(context, [this, providerName, done](const OpenAIChatClient::ModelsResult &result) {
        if (const auto *error = std::get_if<ChatError>(&result)) {
            done(tr("The models of %1 could not be listed: %2").arg(providerName, error->description()));
            return;
        }
        QStringList listed;
        for (const ChatModel::Entry &entry : std::get<ChatModel>(result).data) {
            listed.append(entry.id);
        }
        const QString error = setListedModels(providerName, listed);
        if (!error.isEmpty()) {
            done(error);
            return;
        }
        const CustomProvider *stored = find(providerName);
        done(stored != nullptr ? stored->models() : QStringList());
    });
}

QString CustomProviders::setListedModels(const QString &name, const QStringList &models)
{
    QStringList listed;
    for (const QString &model : models) {
        if (!modelIdProblem(model) && !listed.contains(model)) {
            listed.append(model);
        }
    }
    return change([&](QList<CustomProvider> &providers) {
        CustomProvider *stored = findIn(providers, name);
        if (stored == nullptr) {
            return noSuchProvider(name);
        }
        stored->listedModels = listed;
        return QString();
    });
}

QString CustomProviders::addModel(const QString &name, const QString &model)
{
    if (const std::optional<QString> problem = modelIdProblem(model)) {
        return *problem;
    }
    return change([&](QList<CustomProvider> &providers) {
        CustomProvider *provider = findIn(providers, name);
        if (provider == nullptr) {
            return noSuchProvider(name);
        }
        if (!provider->typedModels.contains(model)) {
            provider->typedModels.append(model);
        }
        return QString();
    });
}

QString CustomProviders::removeModel(const QString &name, const QString &model)
{
    return change([&](QList<CustomProvider> &providers) {
        CustomProvider *provider = findIn(providers, name);
        if (provider == nullptr) {
            return noSuchProvider(name);
        }
        if (!provider->models().contains(model)) {
            return tr("%1 has no model \"%2\".").arg(provider->name, model);
        }
        provider->typedModels.removeAll(model);
        provider->listedModels.removeAll(model);
        return QString();
    });
}

} // namespace zentrik
