#include "model/providerrouting.h"

#include "model/customproviders.h"
#include "model/modelcatalog.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>

namespace zentrik {

namespace {
const std::array<const char16_t *, 3> openAITextModels { u"gpt-3.5-turbo-1106", u"gpt-4-turbo", u"gpt-4o-mini" };
const std::array<const char16_t *, 4> anthropicTextModels { u"claude-instant", u"claude-3-5-sonnet-20240620",
    u"claude-3-opus-20240229", u"claude-3-haiku-20240307" };
const std::array<const char16_t *, 5> freeTextModels { u"meta-llama/llama-3.1-8b-instruct:free",
    u"google/gemma-2-9b-it:free", u"qwen/qwen-2-vl-7b-instruct:free", u"nousresearch/hermes-3-llama-3.1-405b:free",
    u"mistralai/mistral-7b-instruct:free" };

template<size_t N> bool contains(const std::array<const char16_t *, N> &ids, const QString &id)
{
    return std::any_of(
        ids.begin(), ids.end(), [&id](const char16_t *candidate) { return id == QStringView(candidate); });
}

QString unsupportedModelMessage()
{
    return QCoreApplication::translate(
        "APIManager", "Unsupported model selected. Please choose a valid model in Settings.");
}

struct ProviderAddress
{
    const char *variable;
    const char *fallback;
};

ProviderAddress addressOf(Provider provider)
{
    switch (provider) {
    case Provider::openAI:
        return { "ZENTRIK_OPENAI_BASE_URL", "https://api.openai.com" };
    case Provider::anthropic:
        return { "ZENTRIK_ANTHROPIC_BASE_URL", "https://api.anthropic.com" };
    case Provider::openRouter:
        return { "ZENTRIK_OPENROUTER_BASE_URL", "https://openrouter.ai" };
    case Provider::together:
        return { "ZENTRIK_TOGETHER_BASE_URL", "https://api.together.xyz" };
    }
    return { "", "" };
}
} // namespace

bool isOpenAITextModel(const QString &modelId)
{
    return contains(openAITextModels, modelId);
}

bool isAnthropicTextModel(const QString &modelId)
{
    return contains(anthropicTextModels, modelId);
}

bool isCatalogueFreeTextModel(const QString &modelId)
{
    return contains(freeTextModels, modelId);
}

std::optional<TextProvider> routeTextModel(const QString &modelId)
{
    // First, so that a custom model whose own id ends in ":free" stays with its provider.
    if (isCustomModelId(modelId)) {
        return TextProvider::custom;
    }
    if (modelId.endsWith(QStringLiteral(":free"))) {
        return TextProvider::openRouter;
    }
    if (isOpenAITextModel(modelId)) {
        return TextProvider::openAI;
    }
    if (isAnthropicTextModel(modelId)) {
        return TextProvider::anthropic;
    }
    return std::nullopt;
}

ImageProvider routeImageModel(const QString &modelId)
{
    if (modelId == QStringLiteral("DALL-E")) {
        return ImageProvider::openAI;
    }
    if (modelId == QStringLiteral("black-forest-labs/FLUX.1-schnell-Free")) {
        return ImageProvider::together;
    }
    return ImageProvider::fal;
}

bool isCatalogueTextModel(const QString &modelId)
{
    const auto &models = ModelCatalog::textModels();
    return std::any_of(models.begin(), models.end(), [&](const AIModel &model) { return model.id == modelId; });
}

std::optional<QString> preflightMessage(const QString &selectedTextModel, const QString &openAIKey,
    const QString &claudeKey, const CustomProviders *customProviders)
{
    const QString invalid
        = QCoreApplication::translate("APIManager", "Invalid model selected. Please choose a valid model in Settings.");
    if (selectedTextModel.isEmpty()) {
        return QCoreApplication::translate("APIManager", "Please select a text model in Settings.");
    }
    if (const auto custom = splitCustomModelId(selectedTextModel)) {
        const CustomProvider *provider = customProviders ? customProviders->find(custom->first) : nullptr;
        if (provider == nullptr) {
            return invalid;
        }
        if (!provider->serves(custom->second)) {
            return unsupportedModelMessage();
        }
        if (provider->hasKey && customProviders->key(provider->name).isEmpty()) {
            return QCoreApplication::translate("APIManager", "%1 API key is missing. Please add it in Settings.")
                .arg(provider->name);
        }
        return std::nullopt;
    }
    if (!isCatalogueTextModel(selectedTextModel)) {
        return invalid;
    }
    if (isOpenAITextModel(selectedTextModel)) {
        if (openAIKey.isEmpty()) {
            return QCoreApplication::translate("APIManager", "OpenAI API key is missing. Please add it in Settings.");
        }
        return std::nullopt;
    }
    if (isAnthropicTextModel(selectedTextModel)) {
        if (claudeKey.isEmpty()) {
            return QCoreApplication::translate("APIManager", "Claude API key is missing. Please add it in Settings.");
        }
        return std::nullopt;
    }
    if (isCatalogueFreeTextModel(selectedTextModel)) {
        return std::nullopt;
    }
    return unsupportedModelMessage();
}

QUrl providerBaseUrl(Provider provider)
{
    const ProviderAddress address = addressOf(provider);
    const QString configured = qEnvironmentVariable(address.variable);
    return QUrl(configured.isEmpty() ? QString::fromLatin1(address.fallback) : configured, QUrl::StrictMode);
}

QUrl providerUrl(Provider provider, const QString &path)
{
    QUrl url = providerBaseUrl(provider);
    if (!url.isValid() || url.scheme().isEmpty() || url.host().isEmpty()) {
        return {};
    }
    url.setPath(path);
    return url;
}

} // namespace zentrik
