#include "model/apimanager.h"

#include "buildconfig.h"
#include "model/modelcatalog.h"
#include "model/networkpreferences.h"
#include "model/providerrouting.h"

#include <QDebug>

namespace zentrik {

namespace {
const QStringList userKeyAccounts { QString::fromLatin1(APIManager::openAIAccount),
    QString::fromLatin1(APIManager::claudeAccount), QString::fromLatin1(APIManager::falAccount) };
} // namespace

APIManager::APIManager(QObject *parent)
    : APIManager(KeyReading::atStart, parent)
{ }

APIManager::APIManager(KeyReading reading, QObject *parent)
    : QObject(parent)
    , m_http(new HttpClient(this))
    , m_keyService(new KeyService(this))
    , m_customProviders(new CustomProviders(m_http, m_keyService, this))
    , m_localServers(new LocalServerDetector(m_http, m_customProviders, this))
    , m_keyReading(reading)
{
    connect(m_customProviders, &CustomProviders::removed, this, &APIManager::endStreamsOf);
    applyNetworkSettings();
    readSelections();
    m_openRouterKey = QString::fromUtf8(build::openRouterKey);
    m_togetherApiKey = QString::fromUtf8(build::togetherKey);
    m_textModels = ModelCatalog::textModels();
    m_imageModels = ModelCatalog::imageModels();
    if (reading == KeyReading::atStart) {
        readStoredKeys(allKeyAccounts());
    }
    setUpChatClient();
}

APIManager::~APIManager() = default;

void APIManager::overrideUserKeys(const QString &openAIKey, const QString &claudeKey, const QString &falAIKey)
{
    const auto override = [this](QString &field, const QString &value, const char *account) {
        if (!value.isEmpty()) {
            field = value;
            m_overriddenAccounts.append(QString::fromLatin1(account));
        }
    };
    override(m_openAIKey, openAIKey, openAIAccount);
    override(m_claudeKey, claudeKey, claudeAccount);
    override(m_falAIKey, falAIKey, falAccount);
}

QStringList APIManager::accountsForTextModel(const QString &modelId) const
{
    QStringList accounts;
    switch (routeTextModel(modelId).value_or(TextProvider::openRouter)) {
    case TextProvider::openAI:
        accounts.append(QString::fromLatin1(openAIAccount));
        break;
    case TextProvider::anthropic:
        accounts.append(QString::fromLatin1(claudeAccount));
        break;
    case TextProvider::custom:
        if (const auto custom = splitCustomModelId(modelId)) {
            const CustomProvider *provider = m_customProviders->find(custom->first);
            if (provider != nullptr && provider->hasKey) {
                accounts.append(provider->keyAccount());
            }
        }
        break;
    case TextProvider::openRouter:
        break;
    }
    return accounts + networkAccounts();
}

QStringList APIManager::networkAccounts() const
{
    if (NetworkPreferences::needsPassword(networkSettings())) {
        return { QString::fromLatin1(NetworkPreferences::proxyPasswordAccount) };
    }
    return {};
}

QStringList APIManager::allKeyAccounts() const
{
    return userKeyAccounts + m_customProviders->keyAccounts() + networkAccounts();
}

NetworkSettings APIManager::networkSettings() const
{
    return NetworkPreferences::read(m_preferences);
}

void APIManager::applyNetworkSettings()
{
    NetworkSettings settings = networkSettings();
    settings.proxy.password = m_proxyPassword;
    m_http->setNetworkSettings(settings);
}

QString APIManager::transcriptionProvider() const
{
    return m_preferences.string(QString::fromLatin1(transcriptionProviderPreference));
}

QList<AIModel> APIManager::customTextModels() const
{
    QList<AIModel> models;
    for (const CustomProvider &provider : m_customProviders->list()) {
        for (const QString &model : provider.models()) {
            models.append({ provider.modelId(model), model, QStringLiteral("AI"), provider.name });
        }
    }
    return models;
}

void APIManager::readStoredKeys(const QStringList &accounts)
{
    QStringList wanted;
    for (const QString &account : accounts) {
        if (!account.isEmpty() && !m_overriddenAccounts.contains(account) && !wanted.contains(account)) {
            wanted.append(account);
        }
    }
    if (wanted.isEmpty()) {
        return;
    }
    ++m_pendingKeyReads;
    m_keyService->read(wanted, this, [this, wanted](const KeyService::Outcome &outcome) {
        --m_pendingKeyReads;
        m_keyStoreResult = outcome.code;
        // The command line says it once, in its own words, when the key is needed.
        if (!outcome.succeeded() && m_keyReading == KeyReading::atStart) {
            qWarning().noquote() << "The stored API keys could not be read:" << KeyService::describe(outcome.code);
        }
        const auto take = [&](QString &field, const char *account) {
            const QString name = QString::fromLatin1(account);
            // A failed read keeps what was known; a key given for this run always stays.
            if (wanted.contains(name) && !m_overriddenAccounts.contains(name) && outcome.succeeded()) {
                field = outcome.values.value(name);
            }
        };
        take(m_openAIKey, openAIAccount);
        take(m_claudeKey, claudeAccount);
        take(m_falAIKey, falAccount);
        if (outcome.succeeded()) {
            for (const CustomProvider &provider : m_customProviders->list()) {
                if (wanted.contains(provider.keyAccount())) {
                    m_customProviders->setKey(provider.name, outcome.values.value(provider.keyAccount()));
                }
            }
            const QString proxyAccount = QString::fromLatin1(NetworkPreferences::proxyPasswordAccount);
            if (wanted.contains(proxyAccount)) {
                m_proxyPassword = outcome.values.value(proxyAccount);
                applyNetworkSettings();
            }
        }
        Q_EMIT settingsReloaded();
    });
}

void APIManager::setSelectedTextModel(const QString &modelId)
{
    if (m_selectedTextModel == modelId) {
        return;
    }
    m_selectedTextModel = modelId;
    Q_EMIT selectedTextModelChanged();
}

void APIManager::setSelectedImageModel(const QString &modelId)
{
    if (m_selectedImageModel == modelId) {
        return;
    }
    m_selectedImageModel = modelId;
    Q_EMIT selectedImageModelChanged();
}

std::optional<QString> APIManager::preflightMessage() const
{
    return zentrik::preflightMessage(m_selectedTextModel, m_openAIKey, m_claudeKey, m_customProviders);
}

void APIManager::readSelections()
{
    // A stored id that has left the catalogue is kept as it is; requests with it fail
    // with unsupportedModel unless it names a free model.
    setSelectedTextModel(
        m_preferences.string(QString::fromLatin1(textModelPreference), ModelCatalog::defaultTextModel));
    setSelectedImageModel(
        m_preferences.string(QString::fromLatin1(imageModelPreference), ModelCatalog::defaultImageModel));
}

void APIManager::reloadSettings()
{
    readSelections();
    m_customProviders->reload();
    applyNetworkSettings();
    readStoredKeys(m_keyReading == KeyReading::atStart ? allKeyAccounts() : userKeyAccounts);
}

void APIManager::setUpChatClient()
{
    m_openRouterChatUrl = providerUrl(Provider::openRouter, QStringLiteral("/api/v1/chat/completions"));
    m_openRouterModelsUrl = providerUrl(Provider::openRouter, QStringLiteral("/api/v1/models"));
    if (!m_openRouterChatUrl.isValid() || !m_openRouterModelsUrl.isValid()) {
        qInfo().noquote() << "Error: Invalid OpenRouter URLs";
        return;
    }
    m_llmChat.emplace(m_http, m_openRouterKey, m_openRouterChatUrl, m_openRouterModelsUrl);
}

} // namespace zentrik
