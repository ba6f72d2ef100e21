#pragma once

#include "app/networksettingsform.h"
#include "app/providersettings.h"
#include "settings/keyservice.h"
#include "settings/preferences.h"

#include <QObject>
#include <QPointer>
#include <QVariantList>
#include <QtQmlIntegration>

#include <memory>

namespace zentrik {

class APIManager;

// State of the settings screen: the keys as typed, the two model choices, the provider that
// transcribes and the network settings (network), with the custom providers (providers)
// beside them. Loads on creation (the keys arrive in the background through the
// APIManager's key service); nothing is written until save(), which checks the keys and the
// network settings, stores the keys and the proxy's password in the secret store (an empty
// field deletes the stored item), everything else in the preferences, and makes the shared
// APIManager read them again so the next request uses them. The notice after a save says
// whether it worked: saveError holds the reason when it did not. The custom providers are
// changed at once, each action on its own.
class SettingsViewModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(zentrik::APIManager *apiManager READ apiManager WRITE setApiManager NOTIFY apiManagerChanged FINAL)
    Q_PROPERTY(QString selectedTextModel READ selectedTextModel WRITE setSelectedTextModel NOTIFY
            selectedTextModelChanged FINAL)
    Q_PROPERTY(QString selectedImageModel READ selectedImageModel WRITE setSelectedImageModel NOTIFY
            selectedImageModelChanged FINAL)
    Q_PROPERTY(QString openAIKey READ openAIKey WRITE setOpenAIKey NOTIFY openAIKeyChanged FINAL)
    Q_PROPERTY(QString falAIKey READ falAIKey WRITE setFalAIKey NOTIFY falAIKeyChanged FINAL)
    Q_PROPERTY(QString claudeKey READ claudeKey WRITE setClaudeKey NOTIFY claudeKeyChanged FINAL)
    Q_PROPERTY(bool showHowItWorks READ showHowItWorks WRITE setShowHowItWorks NOTIFY showHowItWorksChanged FINAL)
    Q_PROPERTY(QString howItWorksSymbol READ howItWorksSymbol NOTIFY showHowItWorksChanged FINAL)
    Q_PROPERTY(bool showingSaveConfirmation READ showingSaveConfirmation NOTIFY showingSaveConfirmationChanged FINAL)
    Q_PROPERTY(bool secretStoreAvailable READ secretStoreAvailable NOTIFY secretStoreAvailableChanged FINAL)
    Q_PROPERTY(QString keyStoreProblem READ keyStoreProblem NOTIFY keyStoreProblemChanged FINAL)
    Q_PROPERTY(bool isLoadingKeys READ isLoadingKeys NOTIFY isLoadingKeysChanged FINAL)
    Q_PROPERTY(bool isSaving READ isSaving NOTIFY isSavingChanged FINAL)
    Q_PROPERTY(QString saveError READ saveError NOTIFY saveErrorChanged FINAL)
    Q_PROPERTY(QVariantList textModels READ textModels NOTIFY textModelsChanged FINAL)
    Q_PROPERTY(QVariantList imageModels READ imageModels CONSTANT FINAL)
    Q_PROPERTY(zentrik::ProviderSettings *providers READ providers CONSTANT FINAL)
    Q_PROPERTY(zentrik::NetworkSettingsForm *network READ network CONSTANT FINAL)
    Q_PROPERTY(QString transcriptionProvider READ transcriptionProvider WRITE setTranscriptionProvider NOTIFY
            transcriptionProviderChanged FINAL)
    Q_PROPERTY(QVariantList transcriptionProviders READ transcriptionProviders NOTIFY textModelsChanged FINAL)

public:
    explicit SettingsViewModel(QObject *parent = nullptr);
    explicit SettingsViewModel(APIManager *apiManager, QObject *parent = nullptr);

    [[nodiscard]] APIManager *apiManager() const { return m_apiManager; }
    void setApiManager(APIManager *apiManager);

    [[nodiscard]] QString selectedTextModel() const { return m_selectedTextModel; }
    void setSelectedTextModel(const QString &value);
    [[nodiscard]] QString selectedImageModel() const { return m_selectedImageModel; }
    void setSelectedImageModel(const QString &value);
    [[nodiscard]] QString openAIKey() const { return m_openAIKey; }
    void setOpenAIKey(const QString &value);
    [[nodiscard]] QString falAIKey() const { return m_falAIKey; }
    void setFalAIKey(const QString &value);
    [[nodiscard]] QString claudeKey() const { return m_claudeKey; }
    void setClaudeKey(const QString &value);
    [[nodiscard]] bool showHowItWorks() const { return m_showHowItWorks; }
    void setShowHowItWorks(bool value);
    [[nodiscard]] QString howItWorksSymbol() const;
    [[nodiscard]] bool showingSaveConfirmation() const { return m_showingSaveConfirmation; }
    // False only when no Secret Service runs at all.
    [[nodiscard]] bool secretStoreAvailable() const { return m_secretStoreAvailable; }
    // What went wrong with a Secret Service that does run (no answer in time, locked,
    // refused); empty when nothing did.
    [[nodiscard]] QString keyStoreProblem() const { return m_keyStoreProblem; }
    [[nodiscard]] bool isLoadingKeys() const { return m_isLoadingKeys; }
    [[nodiscard]] bool isSaving() const { return m_isSaving; }
    // Why the last save failed; empty after a save that worked.
    [[nodiscard]] QString saveError() const { return m_saveError; }

    // Each entry: id, name, icon, usage (text) or id, name, features (image). The text
    // models are the catalogue's (group empty), then each custom provider's, grouped under
    // the provider's name (group).
    [[nodiscard]] QVariantList textModels() const;
    [[nodiscard]] static QVariantList imageModels();

    [[nodiscard]] ProviderSettings *providers() const { return m_providers; }
    [[nodiscard]] NetworkSettingsForm *network() const { return m_network; }
    // The custom provider that transcribes voice notes; empty for OpenAI.
    [[nodiscard]] QString transcriptionProvider() const { return m_transcriptionProvider; }
    void setTranscriptionProvider(const QString &name);
    // The choices: {id: "", name: "OpenAI"}, then each custom provider by name.
    [[nodiscard]] QVariantList transcriptionProviders() const;

    // Reads the choices (catalogue defaults when absent) and the keys (empty when absent).
    Q_INVOKABLE void load();
    // Checks and writes everything; saveFinished() follows, and the notice shows.
    Q_INVOKABLE void save();
    Q_INVOKABLE void toggleHowItWorks();
    Q_INVOKABLE void dismissSaveConfirmation();

Q_SIGNALS:
    void apiManagerChanged();
    void selectedTextModelChanged();
    void selectedImageModelChanged();
    void openAIKeyChanged();
    void falAIKeyChanged();
    void claudeKeyChanged();
    void showHowItWorksChanged();
    void showingSaveConfirmationChanged();
    void secretStoreAvailableChanged();
    void keyStoreProblemChanged();
    void isLoadingKeysChanged();
    void isSavingChanged();
    void saveErrorChanged();
    void saveFinished(bool succeeded);
    void textModelsChanged();
    void transcriptionProviderChanged();

private:
    [[nodiscard]] KeyService &keyService();
    void showKeyStoreResult(int code);
    void finishSave(const QString &error);
    void setSecretStoreAvailable(bool value);
    void setLoadingKeys(bool value);
    void setSaving(bool value);

    QString m_selectedTextModel;
    QString m_selectedImageModel;
    QString m_openAIKey;
    QString m_falAIKey;
    QString m_claudeKey;
    bool m_showHowItWorks = false;
    bool m_showingSaveConfirmation = false;
    bool m_secretStoreAvailable = true;
    QString m_keyStoreProblem;
    bool m_isLoadingKeys = false;
    bool m_isSaving = false;
    QString m_saveError;
    QString m_transcriptionProvider;
    ProviderSettings *m_providers;
    NetworkSettingsForm *m_network;
    // Only without an APIManager (tests, a screen not yet given one).
    std::unique_ptr<KeyService> m_ownKeyService;
    Preferences m_preferences;
    QPointer<APIManager> m_apiManager;
};

} // namespace zentrik
