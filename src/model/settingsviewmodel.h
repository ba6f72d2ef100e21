#pragma once

#include "settings/preferences.h"
#include "settings/secretstore.h"

#include <QObject>
#include <QPointer>
#include <QVariantList>

namespace zentrik {

class APIManager;

// State of the settings screen: the keys as typed and the two model choices. Loads on
// creation; nothing is written until save(), which stores the keys in the secret store
// (an empty field deletes the stored key), the choices in the preferences, and makes the
// shared APIManager read them again so the next request uses them.
class SettingsViewModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(APIManager *apiManager READ apiManager WRITE setApiManager NOTIFY apiManagerChanged FINAL)
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
    Q_PROPERTY(QVariantList textModels READ textModels CONSTANT FINAL)
    Q_PROPERTY(QVariantList imageModels READ imageModels CONSTANT FINAL)

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
    [[nodiscard]] bool secretStoreAvailable() const { return m_secretStoreAvailable; }

    // Each entry: id, name, icon, usage (text) or id, name, features (image).
    [[nodiscard]] static QVariantList textModels();
    [[nodiscard]] static QVariantList imageModels();

    // Reads the choices (catalogue defaults when absent) and the keys (empty when absent).
    Q_INVOKABLE void load();
    // Returns false when a key could not be written to the secret store.
    Q_INVOKABLE bool save();
    Q_INVOKABLE void toggleHowItWorks();
    Q_INVOKABLE void dismissSaveConfirmation();

    [[nodiscard]] SecretStore &keychain() { return m_keychain; }

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

private:
    bool storeKey(const QString &account, const QString &value);
    void setSecretStoreAvailable(bool value);

    QString m_selectedTextModel;
    QString m_selectedImageModel;
    QString m_openAIKey;
    QString m_falAIKey;
    QString m_claudeKey;
    bool m_showHowItWorks = false;
    bool m_showingSaveConfirmation = false;
    bool m_secretStoreAvailable = true;
    SecretStore m_keychain;
    Preferences m_preferences;
    QPointer<APIManager> m_apiManager;
};

} // namespace zentrik
