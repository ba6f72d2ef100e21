#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <optional>
#include <utility>
#include <variant>

namespace zentrik {

// An OpenAI-compatible service the user added: Ollama, LM Studio or llama.cpp's server on
// this computer, or a hosted one (vLLM, Groq, DeepSeek, Mistral, …). Its key, when it needs
// one, is kept in the Secret Service under the provider's own account; this record says only
// whether there is one.
struct CustomProvider
{
    QString name;
    // The address the OpenAI paths hang off, such as http://127.0.0.1:11434/v1: chat
    // completions at <base>/chat/completions, the model list at <base>/models.
    QUrl baseUrl;
    bool hasKey = false;
    // As the server listed them at the last refresh.
    QStringList listedModels;
    // Typed by the user, for servers that list none (or not the one wanted); kept across
    // refreshes.
    QStringList typedModels;

    // The listed models, then the typed ones not listed, each once.
    [[nodiscard]] QStringList models() const;
    [[nodiscard]] bool serves(const QString &model) const { return models().contains(model); }

    [[nodiscard]] QUrl endpoint(const QString &path) const;
    [[nodiscard]] QUrl chatUrl() const { return endpoint(QStringLiteral("/chat/completions")); }
    [[nodiscard]] QUrl modelsUrl() const { return endpoint(QStringLiteral("/models")); }
    [[nodiscard]] QUrl transcriptionUrl() const { return endpoint(QStringLiteral("/audio/transcriptions")); }

    // The Secret Service account of this provider's key.
    [[nodiscard]] QString keyAccount() const { return keyAccountFor(name); }
    [[nodiscard]] static QString keyAccountFor(const QString &name);

    // The id under which one of its models is selected (see customModelId()).
    [[nodiscard]] QString modelId(const QString &model) const;

    [[nodiscard]] QJsonObject toJson() const;
    // std::nullopt for an entry that cannot be a provider (no name, no usable address).
    [[nodiscard]] static std::optional<CustomProvider> fromJson(const QJsonObject &object);

    friend bool operator==(const CustomProvider &, const CustomProvider &) = default;
};

// Custom models are selected as "custom:<provider name>/<model id>". No catalogue id starts
// with that prefix, and the provider's name cannot hold a "/", so these ids never collide
// with the catalogue's or with another provider's, whatever the models are called (the
// model's own id may hold "/" and ":", even end in ":free").
[[nodiscard]] QString customModelId(const QString &providerName, const QString &model);
[[nodiscard]] bool isCustomModelId(const QString &modelId);
// The provider's name and the model's own id; std::nullopt for any other id.
[[nodiscard]] std::optional<std::pair<QString, QString>> splitCustomModelId(const QString &modelId);

// Why a text cannot name a custom provider (empty, too long, a "/" or a control character,
// a built-in provider's name); std::nullopt when it can. Uniqueness is the list's concern.
[[nodiscard]] std::optional<QString> providerNameProblem(const QString &name);
// The base address as it is kept (no trailing "/"), or why it cannot be one: only http and
// https, a host, no user name or password, query or fragment.
[[nodiscard]] std::variant<QUrl, QString> normalizedProviderUrl(const QString &text);
// Why a text cannot be a model id (empty, control characters, too long).
[[nodiscard]] std::optional<QString> modelIdProblem(const QString &model);

} // namespace zentrik
