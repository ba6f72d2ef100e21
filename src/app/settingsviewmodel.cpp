#include "app/settingsviewmodel.h"

#include "model/apimanager.h"
#include "model/modelcatalog.h"
#include "model/networkpreferences.h"
#include "settings/apikeycheck.h"

#include <QVariantMap>

namespace zentrik {

namespace {
const QString openAIAccount = QString::fromLatin1(APIManager::openAIAccount);
const QString claudeAccount = QString::fromLatin1(APIManager::claudeAccount);
const QString falAccount = QString::fromLatin1(APIManager::falAccount);
const QString proxyPasswordAccount = QString::fromLatin1(NetworkPreferences::proxyPasswordAccount);

template<typename T> bool assign(T &field, const T &value)
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
{ }

SettingsViewModel::SettingsViewModel(APIManager *apiManager, QObject *parent)
    : QObject(parent)
    , m_providers(new ProviderSettings(this))
    , m_network(new NetworkSettingsForm(this))
    , m_apiManager(apiManager)
{
    connect(m_providers, &ProviderSettings::providersChanged, this, &SettingsViewModel::textModelsChanged);
    m_providers->setApiManager(apiManager);
    if (apiManager) {
        load();
    } else {
        m_isLoadingKeys = true;
        // Created by a screen, which hands over the shared APIManager just after: read the
        // keys through its service rather than start one of our own.
        QMetaObject::invokeMethod(this, &SettingsViewModel::load, Qt::QueuedConnection);
    }
}

void SettingsViewModel::setApiManager(APIManager *apiManager)
{
    if (m_apiManager == apiManager) {
        return;
    }
    m_apiManager = apiManager;
    m_providers->setApiManager(apiManager);
    Q_EMIT apiManagerChanged();
}

void SettingsViewModel::setTranscriptionProvider(const QString &name)
{
    if (assign(m_transcriptionProvider, name)) {
        Q_EMIT transcriptionProviderChanged();
    }
}

QVariantList SettingsViewModel::transcriptionProviders() const
{
    QVariantList list { QVariantMap { { QStringLiteral("id"), QString() }, { QStringLiteral("name"), tr("OpenAI") } } };
    if (!m_apiManager.isNull()) {
        for (const CustomProvider &provider : m_apiManager->customProviders().list()) {
            list.append(
                QVariantMap { { QStringLiteral("id"), provider.name }, { QStringLiteral("name"), provider.name } });
        }
    }
    return list;
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

QVariantList SettingsViewModel::textModels() const
{
    QVariantList list;
    const auto add = [&list](const AIModel &model, const QString &group) {
        list.append(QVariantMap { { QStringLiteral("id"), model.id }, { QStringLiteral("name"), model.name },
            { QStringLiteral("icon"), model.icon }, { QStringLiteral("usage"), model.usage },
            { QStringLiteral("group"), group } });
    };
    for (const AIModel &model : ModelCatalog::textModels()) {
        add(model, QString());
    }
    if (!m_apiManager.isNull()) {
        for (const AIModel &model : m_apiManager->customTextModels()) {
            add(model, model.usage);
        }
    }
    return list;
}

QVariantList SettingsViewModel::imageModels()
{
    QVariantList list;
    for (const ImageModel &model : ModelCatalog::imageModels()) {
        list.append(QVariantMap { { QStringLiteral("id"), model.id }, { QStringLiteral("name"), model.name },
            { QStringLiteral("features"), model.features } });
    }
    return list;
}

KeyService &SettingsViewModel::keyService()
{
    if (m_apiManager) {
        return m_apiManager->keyService();
    }
    if (!m_ownKeyService) {
        m_ownKeyService = std::make_unique<KeyService>();
    }
    return *m_ownKeyService;
}

void SettingsViewModel::load()
{
    setSelectedTextModel(
        m_preferences.string(QString::fromLatin1(APIManager::textModelPreference), ModelCatalog::defaultTextModel));
    setSelectedImageModel(
        m_preferences.string(QString::fromLatin1(APIManager::imageModelPreference), ModelCatalog::defaultImageModel));
    setTranscriptionProvider(m_preferences.string(QString::fromLatin1(APIManager::transcriptionProviderPreference)));
    m_network->load(m_preferences);
    setLoadingKeys(true);
    // A field the user types into before the stored keys arrive keeps what was typed.
    const QStringList typed { m_openAIKey, m_claudeKey, m_falAIKey, m_network->proxyPassword() };
    keyService().read({ openAIAccount, claudeAccount, falAccount, proxyPasswordAccount }, this,
        [this, typed](const KeyService::Outcome &outcome) {
            setLoadingKeys(false);
            showKeyStoreResult(outcome.code);
            if (!outcome.succeeded()) {
                return;
            }
            if (m_openAIKey == typed.at(0)) {
                setOpenAIKey(outcome.values.value(openAIAccount));
            }
            if (m_claudeKey == typed.at(1)) {
                setClaudeKey(outcome.values.value(claudeAccount));
            }
            if (m_falAIKey == typed.at(2)) {
                setFalAIKey(outcome.values.value(falAccount));
            }
            if (m_network->proxyPassword() == typed.at(3)) {
                m_network->setProxyPassword(outcome.values.value(proxyPasswordAccount));
            }
        });
}

void SettingsViewModel::showKeyStoreResult(int code)
{
    setSecretStoreAvailable(code != secretNoService);
    const QString problem = code == secretSuccess || code == secretNoService ? QString() : KeyService::describe(code);
    if (assign(m_keyStoreProblem, problem)) {
        Q_EMIT keyStoreProblemChanged();
    }
}

void SettingsViewModel::save()
{
    if (m_isSaving) {
        return;
    }
    const QList<std::pair<QString, QString>> fields { { tr("OpenAI"), m_openAIKey.trimmed() },
        { tr("Fal AI"), m_falAIKey.trimmed() }, { tr("Claude"), m_claudeKey.trimmed() } };
    for (const auto &[provider, key] : fields) {
        if (const std::optional<QString> problem = apiKeyProblem(key)) {
            finishSave(tr("The %1 API key contains %2; API keys are printable ASCII characters without spaces. "
                          "Nothing was saved.")
                           .arg(provider, *problem));
            return;
        }
    }

    if (const QString problem = m_network->problem(); !problem.isEmpty()) {
        finishSave(tr("%1 Nothing was saved.").arg(problem));
        return;
    }

    const bool choicesSaved = m_preferences.update([this](QVariantMap &values) {
        values.insert(QString::fromLatin1(APIManager::textModelPreference), m_selectedTextModel);
        values.insert(QString::fromLatin1(APIManager::imageModelPreference), m_selectedImageModel);
        values.insert(QString::fromLatin1(APIManager::transcriptionProviderPreference), m_transcriptionProvider);
        m_network->writeTo(values);
        return true;
    });
    if (!choicesSaved) {
        finishSave(tr("The model choices could not be saved: %1").arg(m_preferences.errorString()));
        return;
    }

    setSaving(true);
    keyService().write(
        { { openAIAccount, fields.at(0).second }, { falAccount, fields.at(1).second },
            { claudeAccount, fields.at(2).second }, { proxyPasswordAccount, m_network->passwordToStore() } },
        this, [this](const KeyService::Outcome &outcome) {
            setSaving(false);
            showKeyStoreResult(outcome.code);
            if (m_apiManager) {
                m_apiManager->reloadSettings();
            }
            finishSave(outcome.succeeded() ? QString() : KeyService::describe(outcome.code));
        });
}

void SettingsViewModel::finishSave(const QString &error)
{
    if (assign(m_saveError, error)) {
        Q_EMIT saveErrorChanged();
    }
    if (assign(m_showingSaveConfirmation, true)) {
        Q_EMIT showingSaveConfirmationChanged();
    }
    Q_EMIT saveFinished(error.isEmpty());
}

void SettingsViewModel::setLoadingKeys(bool value)
{
    if (assign(m_isLoadingKeys, value)) {
        Q_EMIT isLoadingKeysChanged();
    }
}

void SettingsViewModel::setSaving(bool value)
{
    if (assign(m_isSaving, value)) {
        Q_EMIT isSavingChanged();
    }
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
