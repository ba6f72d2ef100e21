#pragma once

#include "chat/openaichatclient.h"
#include "fal/falqueuestatus.h"
#include "model/aimodel.h"
#include "model/apierror.h"
#include "model/customproviders.h"
#include "model/imageerror.h"
#include "model/localserverdetector.h"
#include "model/providerrouting.h"
#include "net/httpclient.h"
#include "settings/keyservice.h"
#include "settings/preferences.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>
#include <QtQmlIntegration>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <variant>

namespace zentrik {

// The reply text, or why there is none.
using TextResult = std::variant<QString, APIError>;
// The address of a generated picture (remote, or a local file), or why there is none.
using ImageResult = std::variant<QString, ImageError>;

// The one object through which every tool reaches a model service: the catalogues, the
// user's choices, the provider keys and the routing rule. One instance lives as long as
// the window (or the CLI run) and is shared by every screen: in the window it is the QML
// singleton APIManager, made by the engine on first use and deleted with it.
class APIManager : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString selectedTextModel READ selectedTextModel WRITE setSelectedTextModel NOTIFY
            selectedTextModelChanged FINAL)
    Q_PROPERTY(QString selectedImageModel READ selectedImageModel WRITE setSelectedImageModel NOTIFY
            selectedImageModelChanged FINAL)
    Q_PROPERTY(zentrik::LocalServerDetector *localServers READ localServers CONSTANT FINAL)

public:
    // When the stored keys are read: at once (in the background: nothing waits for the
    // Secret Service), or only when readStoredKeys() asks for them (the command line, which
    // needs one key at most and none that the environment gives).
    enum class KeyReading { atStart, onRequest };

    explicit APIManager(QObject *parent = nullptr);
    explicit APIManager(KeyReading reading, QObject *parent = nullptr);
    ~APIManager() override;

    [[nodiscard]] QString selectedTextModel() const { return m_selectedTextModel; }
    void setSelectedTextModel(const QString &modelId);
    [[nodiscard]] QString selectedImageModel() const { return m_selectedImageModel; }
    void setSelectedImageModel(const QString &modelId);

    [[nodiscard]] QString openAIKey() const { return m_openAIKey; }
    [[nodiscard]] QString claudeKey() const { return m_claudeKey; }
    [[nodiscard]] QString falAIKey() const { return m_falAIKey; }
    [[nodiscard]] QString openRouterKey() const { return m_openRouterKey; }

    [[nodiscard]] const QList<AIModel> &textModels() const { return m_textModels; }
    [[nodiscard]] const QList<ImageModel> &imageModels() const { return m_imageModels; }

    // The one way to the Secret Service, shared by the settings screen and the licence gate.
    [[nodiscard]] KeyService &keyService() { return *m_keyService; }
    // Reads these accounts' keys in the background, except those given for this run;
    // settingsReloaded() follows when they are in.
    void readStoredKeys(const QStringList &accounts);
    // Whether a read of the stored keys is still under way.
    [[nodiscard]] bool readingKeys() const { return m_pendingKeyReads > 0; }
    // The result code of the last read of the stored keys (secretSuccess before any).
    [[nodiscard]] int keyStoreResult() const { return m_keyStoreResult; }
    // The secret-store accounts a request to this text model needs read: its provider's key
    // (none for the free models and for custom providers without a key), and the proxy's
    // password when the proxy asks for one.
    [[nodiscard]] QStringList accountsForTextModel(const QString &modelId) const;
    // The accounts any request needs read: the proxy's password when the proxy asks for one.
    [[nodiscard]] QStringList networkAccounts() const;

    // The user's OpenAI-compatible providers, and the model servers found on this computer.
    [[nodiscard]] CustomProviders &customProviders() { return *m_customProviders; }
    [[nodiscard]] const CustomProviders &customProviders() const { return *m_customProviders; }
    [[nodiscard]] LocalServerDetector *localServers() const { return m_localServers; }
    // The text models of the custom providers, after the catalogue's, grouped by provider:
    // each with the namespaced id, the model's own id as name, and the provider as usage.
    [[nodiscard]] QList<AIModel> customTextModels() const;

    // The proxy and CA file in effect (without the proxy's password).
    [[nodiscard]] NetworkSettings networkSettings() const;
    // Which provider transcribes: empty for OpenAI, otherwise a custom provider's name.
    [[nodiscard]] QString transcriptionProvider() const;

    // The check the tools run before sending with the current selection and keys:
    // std::nullopt when it passes, otherwise the message to show.
    [[nodiscard]] std::optional<QString> preflightMessage() const;

    // Whether the OpenRouter chat client could be set up (its addresses formed).
    [[nodiscard]] bool hasChatClient() const { return m_llmChat.has_value(); }
    // The one HTTP client every request of this manager goes through.
    [[nodiscard]] HttpClient &httpClient() { return *m_http; }

    using StreamId = quint64;
    using TextCompletion = std::function<void(const TextResult &result)>;
    using StreamPiece = std::function<void(const QString &piece)>;
    // std::nullopt for a reply that ended normally (or was stopped), otherwise the failure.
    using StreamCompletion = std::function<void(const std::optional<APIError> &error)>;

    // Sends the prompt to the selected text model and hands the whole reply, or the error,
    // to the completion: exactly once, on this object's thread, never from inside this call
    // and never after `context` (when given) is destroyed.
    void generateText(const QString &prompt, QObject *context, TextCompletion completion);
    // The same, with the earlier messages of the conversation sent before the prompt.
    void generateText(
        const QString &prompt, const QList<ChatMessage> &earlier, QObject *context, TextCompletion completion);
    // Streams the reply to the prompt from the selected text model: each piece of text as it
    // arrives, then the completion once. ":free" models go through `llmChat` to OpenRouter,
    // the OpenAI models through a chat client bound to OpenAI and `openAIKey`, the Anthropic
    // models through Anthropic's streamed messages.
    StreamId streamText(const QString &prompt, QObject *context, StreamPiece onPiece, StreamCompletion completion);
    // The same, with the earlier messages of the conversation sent before the prompt.
    StreamId streamText(const QString &prompt, const QList<ChatMessage> &earlier, QObject *context, StreamPiece onPiece,
        StreamCompletion completion);
    // Ends a stream: no further piece arrives, and its completion runs at once, before this
    // returns, as a normal end. Pieces already delivered stay delivered. Unknown ids (streams
    // that have already ended) are ignored.
    void stopStream(StreamId id);
    [[nodiscard]] bool isStreamActive(StreamId id) const { return m_streams.contains(id); }

    using TranscriptionCompletion = std::function<void(const TextResult &result)>;
    // Sends the recording at audioFilePath to speech-to-text, whatever text model is
    // selected: OpenAI's with `openAIKey`, or the custom provider chosen to transcribe, and
    // hands the transcript, or the error, to the completion: exactly once, on this object's
    // thread, never from inside this call and never after `context` (when given) is destroyed.
    void transcribe(const QString &audioFilePath, QObject *context, TranscriptionCompletion completion);

    using ImageCompletion = std::function<void(const ImageResult &result)>;
    // Each status of a queued fal request as it arrives.
    using ImageProgress = std::function<void(const fal::QueueStatus &status)>;
    // Generates a picture from the prompt with the selected image model: "DALL-E" through
    // OpenAI, the free FLUX model through Together, any other id as a fal application. The
    // completion runs exactly once, on this object's thread, never from inside this call and
    // never after `context` (when given) is destroyed.
    void generateImage(
        const QString &prompt, QObject *context, ImageCompletion completion, ImageProgress onProgress = {});
    void generateOpenAIImage(const QString &prompt, QObject *context, ImageCompletion completion);
    // Writes the picture as a PNG file in the temporary directory and hands back its address.
    void generateTogetherImage(const QString &prompt, QObject *context, ImageCompletion completion);
    void generateFalImage(const QString &modelId, const QString &prompt, QObject *context, ImageCompletion completion,
        ImageProgress onProgress = {});
    // How the fal path waits for its queue: the pause between two status requests and the
    // time limit (none waits for ever).
    void setFalPolling(std::chrono::nanoseconds interval, std::optional<std::chrono::nanoseconds> timeLimit);
    // A Together key for this run only, for builds without the built-in one; an empty value
    // leaves the built-in key in place.
    void overrideTogetherKey(const QString &key);

    // Keys given for this run only (the command line's OPENAI_API_KEY, ANTHROPIC_API_KEY and
    // FAL_KEY); an empty value leaves the key from the secret store in place.
    void overrideUserKeys(const QString &openAIKey, const QString &claudeKey, const QString &falAIKey);
    [[nodiscard]] QUrl openRouterChatUrl() const { return m_openRouterChatUrl; }
    [[nodiscard]] QUrl openRouterModelsUrl() const { return m_openRouterModelsUrl; }

    // Reads the selections from the preferences again, and the user's keys from the secret
    // store in the background (settingsReloaded() follows); the settings screen calls it
    // after a save.
    Q_INVOKABLE void reloadSettings();

    // Secret-store accounts of the user's keys, and the preference keys of the selections.
    static constexpr const char *openAIAccount = "openAIKey";
    static constexpr const char *claudeAccount = "claudeKey";
    static constexpr const char *falAccount = "falAIKey";
    static constexpr const char *textModelPreference = "selectedTextModel";
    static constexpr const char *imageModelPreference = "selectedImageModel";
    // A custom provider's name; absent or empty for OpenAI.
    static constexpr const char *transcriptionProviderPreference = "transcriptionProvider";

Q_SIGNALS:
    void selectedTextModelChanged();
    void selectedImageModelChanged();
    // The keys were read again (or the Secret Service failed: see keyStoreResult()).
    void settingsReloaded();

private:
    struct ActiveStream;
    struct TextRoute;

    void readSelections();
    void setUpChatClient();
    // The network settings from the preferences, with the proxy password last read.
    void applyNetworkSettings();
    // Where a request for this model goes, or why it cannot be sent.
    [[nodiscard]] std::variant<TextRoute, APIError> routeText(const QString &modelId) const;
    // Ends the streams from a custom provider that was just removed.
    void endStreamsOf(const QString &providerName);
    // Every account the window reads at start: the three user keys, the custom providers'
    // keys and the proxy's password when it needs one.
    [[nodiscard]] QStringList allKeyAccounts() const;
    StreamId startStream(const std::shared_ptr<ActiveStream> &stream, QObject *context);
    void finishStream(StreamId id, const std::optional<APIError> &error);

    HttpClient *m_http;
    KeyService *m_keyService;
    CustomProviders *m_customProviders;
    LocalServerDetector *m_localServers;
    QString m_proxyPassword;
    KeyReading m_keyReading;
    int m_pendingKeyReads = 0;
    int m_keyStoreResult = secretSuccess;
    // Accounts whose key was given for this run; the store never replaces them.
    QStringList m_overriddenAccounts;

    QString m_selectedTextModel;
    QString m_selectedImageModel;
    Preferences m_preferences;
    QString m_openAIKey;
    QString m_claudeKey;
    QString m_falAIKey;
    QString m_openRouterKey;
    QString m_togetherApiKey;
    std::optional<OpenAIChatClient> m_llmChat;
    QUrl m_openRouterChatUrl;
    QUrl m_openRouterModelsUrl;
    QList<AIModel> m_textModels;
    QList<ImageModel> m_imageModels;

    std::chrono::nanoseconds m_falPollInterval = std::chrono::milliseconds(500);
    std::optional<std::chrono::nanoseconds> m_falTimeLimit = std::chrono::minutes(5);

    std::unordered_map<StreamId, std::shared_ptr<ActiveStream>> m_streams;
    StreamId m_nextStreamId = 1;
};

} // namespace zentrik
