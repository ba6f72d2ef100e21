#pragma once

#include <QString>
#include <QUrl>

#include <optional>

namespace zentrik {

class CustomProviders;

enum class TextProvider { openAI, anthropic, openRouter, custom };
enum class ImageProvider { openAI, together, fal };

// The provider that serves a text model id: "custom:" ids go to the custom provider they
// name; ":free" ids go to OpenRouter whether or not they are in the catalogue; the OpenAI
// and Anthropic ids are matched exactly; anything else has no provider (the request fails
// with unsupportedModel before any network use).
[[nodiscard]] std::optional<TextProvider> routeTextModel(const QString &modelId);

// "DALL-E" goes to OpenAI, the free FLUX model to Together, every other id to fal.
[[nodiscard]] ImageProvider routeImageModel(const QString &modelId);

[[nodiscard]] bool isCatalogueTextModel(const QString &modelId);
[[nodiscard]] bool isOpenAITextModel(const QString &modelId);
[[nodiscard]] bool isAnthropicTextModel(const QString &modelId);
// The five free ids of the catalogue, by name (the pre-flight check lists them, it does not
// test the suffix).
[[nodiscard]] bool isCatalogueFreeTextModel(const QString &modelId);

// The check every tool runs before it sends (the chats, the developer tools, the generators
// and the CLI alike): std::nullopt when the selection can be used, otherwise the message to
// show in place of a reply. A model passes whenever its provider's key is there: a custom
// provider's model when the provider exists, serves it, and has its key read if it keeps
// one. A custom id naming no provider is outside every catalogue; a model its provider no
// longer serves is unsupported.
[[nodiscard]] std::optional<QString> preflightMessage(const QString &selectedTextModel, const QString &openAIKey,
    const QString &claudeKey, const CustomProviders *customProviders = nullptr);

// The fal client keeps its own two addresses.
enum class Provider { openAI, anthropic, openRouter, together };

// Scheme, host and port of a provider, from its ZENTRIK_*_URL variable when set (tests,
// proxies), otherwise the provider's public HTTPS host.
[[nodiscard]] QUrl providerBaseUrl(Provider provider);
// The base address with the given path; invalid when the base address is not usable.
[[nodiscard]] QUrl providerUrl(Provider provider, const QString &path);

} // namespace zentrik
