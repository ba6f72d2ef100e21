#pragma once

#include "model/aimodel.h"
#include "settings/preferences.h"
#include "settings/secretstore.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>

namespace zentrik {

// The one object through which every tool reaches a model service: the catalogues, the
// user's choices, the provider keys and the routing rule. One instance lives as long as
// the window (or the CLI run) and is shared by every screen.
class APIManager : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString selectedTextModel READ selectedTextModel WRITE setSelectedTextModel NOTIFY
                   selectedTextModelChanged FINAL)
    Q_PROPERTY(QString selectedImageModel READ selectedImageModel WRITE setSelectedImageModel NOTIFY
                   selectedImageModelChanged FINAL)

public:
    explicit APIManager(QObject *parent = nullptr);
    ~APIManager() override;

    [[nodiscard]] QString selectedTextModel() const { return m_selectedTextModel; }
    void setSelectedTextModel(const QString &modelId);
    [[nodiscard]] QString selectedImageModel() const { return m_selectedImageModel; }
    void setSelectedImageModel(const QString &modelId);

    [[nodiscard]] QString openAIKey() const { return m_openAIKey; }
    [[nodiscard]] QString claudeKey() const { return m_claudeKey; }
    [[nodiscard]] QString falAIKey() const { return m_falAIKey; }
    [[nodiscard]] QString openRouterKey() const { return m_openRouterKey; }
    [[nodiscard]] QString togetherApiKey() const { return m_togetherApiKey; }

    [[nodiscard]] const QList<AIModel> &textModels() const { return m_textModels; }
    [[nodiscard]] const QList<ImageModel> &imageModels() const { return m_imageModels; }

    [[nodiscard]] SecretStore &keychain() { return m_keychain; }

    // The check the tools run before sending with the current selection and keys:
    // std::nullopt when it passes, otherwise the message to show.
    [[nodiscard]] std::optional<QString> preflightMessage() const;

    // Whether the OpenRouter chat client could be set up (its addresses formed).
    [[nodiscard]] bool hasChatClient() const { return m_llmChatReady; }
    [[nodiscard]] QUrl openRouterChatUrl() const { return m_openRouterChatUrl; }
    [[nodiscard]] QUrl openRouterModelsUrl() const { return m_openRouterModelsUrl; }

    // Reads the user's keys from the secret store and the selections from the preferences
    // again; the settings screen calls it after a save.
    Q_INVOKABLE void reloadSettings();

    // Secret-store accounts of the user's keys, and the preference keys of the selections.
    static constexpr const char *openAIAccount = "openAIKey";
    static constexpr const char *claudeAccount = "claudeKey";
    static constexpr const char *falAccount = "falAIKey";
    static constexpr const char *textModelPreference = "selectedTextModel";
    static constexpr const char *imageModelPreference = "selectedImageModel";

Q_SIGNALS:
    void selectedTextModelChanged();
    void selectedImageModelChanged();
    // The keys were read again.
    void settingsReloaded();

private:
    void readSelections();
    void setUpChatClient();

    QString m_selectedTextModel;
    QString m_selectedImageModel;
    SecretStore m_keychain;
    Preferences m_preferences;
    QString m_openAIKey;
    QString m_claudeKey;
    QString m_falAIKey;
    QString m_openRouterKey;
    QString m_togetherApiKey;
    bool m_llmChatReady = false;
    QUrl m_openRouterChatUrl;
    QUrl m_openRouterModelsUrl;
    QList<AIModel> m_textModels;
    QList<ImageModel> m_imageModels;
};

} // namespace zentrik
