#include "model/apimanager.h"

#include "buildconfig.h"
#include "model/modelcatalog.h"
#include "model/providerrouting.h"

#include <QDebug>

namespace zentrik {

APIManager::APIManager(QObject *parent)
    : QObject(parent)
    , m_http(new HttpClient(this))
{
    readSelections();
    m_openRouterKey = QString::fromUtf8(build::openRouterKey);
    m_togetherApiKey = QString::fromUtf8(build::togetherKey);
    m_textModels = ModelCatalog::textModels();
    m_imageModels = ModelCatalog::imageModels();
    reloadSettings();
    setUpChatClient();
}

APIManager::~APIManager() = default;

void APIManager::overrideUserKeys(const QString &openAIKey, const QString &claudeKey, const QString &falAIKey)
{
    if (!openAIKey.isEmpty()) {
        m_openAIKey = openAIKey;
    }
    if (!claudeKey.isEmpty()) {
        m_claudeKey = claudeKey;
    }
    if (!falAIKey.isEmpty()) {
        m_falAIKey = falAIKey;
    }
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
    return zentrik::preflightMessage(m_selectedTextModel, m_openAIKey, m_claudeKey);
}

void APIManager::readSelections()
{
    // A stored id that has left the catalogue is kept as it is; requests with it fail
    // with unsupportedModel unless it names a free model.
    setSelectedTextModel(m_preferences.string(QString::fromLatin1(textModelPreference), ModelCatalog::defaultTextModel));
    setSelectedImageModel(
        m_preferences.string(QString::fromLatin1(imageModelPreference), ModelCatalog::defaultImageModel));
}

void APIManager::reloadSettings()
{
    m_openAIKey = m_keychain.get(QString::fromLatin1(openAIAccount)).value_or(QString());
    m_claudeKey = m_keychain.get(QString::fromLatin1(claudeAccount)).value_or(QString());
    m_falAIKey = m_keychain.get(QString::fromLatin1(falAccount)).value_or(QString());
    readSelections();
    Q_EMIT settingsReloaded();
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
