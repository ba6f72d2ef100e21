#include "model/settingsviewmodel.h"

#include "model/apimanager.h"
#include "model/modelcatalog.h"

#include <QVariantMap>

namespace zentrik {

namespace {
const QString openAIAccount = QString::fromLatin1(APIManager::openAIAccount);
const QString claudeAccount = QString::fromLatin1(APIManager::claudeAccount);
const QString falAccount = QString::fromLatin1(APIManager::falAccount);

template<typename T>
bool assign(T &field, const T &value)
{
    if (field == value) {
        return false;
    }
    field = value;
    return true;
}
} // namespace

SettingsViewModel::SettingsViewModel(QObject *parent)
    : SettingsViewModel(nullptr, parent)
{
}

SettingsViewModel::SettingsViewModel(APIManager *apiManager, QObject *parent)
    : QObject(parent)
    , m_apiManager(apiManager)
{
    load();
}

void SettingsViewModel::setApiManager(APIManager *apiManager)
{
    if (m_apiManager == apiManager) {
        return;
    }
    m_apiManager = apiManager;
    Q_EMIT apiManagerChanged();
}

void SettingsViewModel::setSelectedTextModel(const QString &value)
{
    if (assign(m_selectedTextModel, value)) {
        Q_EMIT selectedTextModelChanged();
    }
}

void SettingsViewModel::setSelectedImageModel(const QString &value)
{
    if (assign(m_selectedImageModel, value)) {
        Q_EMIT selectedImageModelChanged();
    }
}

void SettingsViewModel::setOpenAIKey(const QString &value)
{
    if (assign(m_openAIKey, value)) {
        Q_EMIT openAIKeyChanged();
    }
}

void SettingsViewModel::setFalAIKey(const QString &value)
{
    if (assign(m_falAIKey, value)) {
        Q_EMIT falAIKeyChanged();
    }
}

void SettingsViewModel::setClaudeKey(const QString &value)
{
    if (assign(m_claudeKey, value)) {
        Q_EMIT claudeKeyChanged();
    }
}

void SettingsViewModel::setShowHowItWorks(bool value)
{
    if (assign(m_showHowItWorks, value)) {
        Q_EMIT showHowItWorksChanged();
    }
}

QString SettingsViewModel::howItWorksSymbol() const
{
    return m_showHowItWorks ? QStringLiteral("chevron.up") : QStringLiteral("chevron.down");
}

void SettingsViewModel::setSecretStoreAvailable(bool value)
{
    if (assign(m_secretStoreAvailable, value)) {
        Q_EMIT secretStoreAvailableChanged();
    }
}

QVariantList SettingsViewModel::textModels()
{
    QVariantList list;
    for (const AIModel &model : ModelCatalog::textModels()) {
        list.append(QVariantMap{{QStringLiteral("id"), model.id},
                                {QStringLiteral("name"), model.name},
                                {QStringLiteral("icon"), model.icon},
                                {QStringLiteral("usage"), model.usage}});
    }
    return list;
}

QVariantList SettingsViewModel::imageModels()
{
    QVariantList list;
    for (const ImageModel &model : ModelCatalog::imageModels()) {
        list.append(QVariantMap{{QStringLiteral("id"), model.id},
                                {QStringLiteral("name"), model.name},
                                {QStringLiteral("features"), model.features}});
    }
    return list;
}

void SettingsViewModel::load()
{
    setSelectedTextModel(m_preferences.string(QString::fromLatin1(APIManager::textModelPreference),
                                              ModelCatalog::defaultTextModel));
    setSelectedImageModel(m_preferences.string(QString::fromLatin1(APIManager::imageModelPreference),
                                               ModelCatalog::defaultImageModel));
    setOpenAIKey(m_keychain.get(openAIAccount).value_or(QString()));
    setClaudeKey(m_keychain.get(claudeAccount).value_or(QString()));
    setFalAIKey(m_keychain.get(falAccount).value_or(QString()));
    setSecretStoreAvailable(m_keychain.lastResultCode() != secretNoService);
}

bool SettingsViewModel::storeKey(const QString &account, const QString &value)
{
    if (value.isEmpty()) {
        // Nothing stored is as good as deleted: "not found" is success here.
        return m_keychain.remove(account) || m_keychain.lastResultCode() == secretNotFound;
    }
    return m_keychain.set(value, account);
}

bool SettingsViewModel::save()
{
    bool keysStored = storeKey(openAIAccount, m_openAIKey);
    keysStored = storeKey(falAccount, m_falAIKey) && keysStored;
    keysStored = storeKey(claudeAccount, m_claudeKey) && keysStored;
    setSecretStoreAvailable(m_keychain.lastResultCode() != secretNoService);

    m_preferences.setString(QString::fromLatin1(APIManager::textModelPreference), m_selectedTextModel);
    m_preferences.setString(QString::fromLatin1(APIManager::imageModelPreference), m_selectedImageModel);
    if (m_apiManager) {
        m_apiManager->reloadSettings();
    }
    if (assign(m_showingSaveConfirmation, true)) {
        Q_EMIT showingSaveConfirmationChanged();
    }
    return keysStored;
}

void SettingsViewModel::toggleHowItWorks()
{
    setShowHowItWorks(!m_showHowItWorks);
}

void SettingsViewModel::dismissSaveConfirmation()
{
    if (assign(m_showingSaveConfirmation, false)) {
        Q_EMIT showingSaveConfirmationChanged();
    }
}

} // namespace zentrik
