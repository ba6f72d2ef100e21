#include "model/modelcatalog.h"

namespace zentrik::ModelCatalog {

const QList<AIModel> &textModels()
{
    static const QList<AIModel> models {
        { QStringLiteral("gpt-3.5-turbo-1106"), QStringLiteral("GPT-3.5"), QString::fromUcs4(U"\U0001F7E2", 1),
            QStringLiteral("Balanced model for various tasks") },
        { QStringLiteral("gpt-4-turbo"), QStringLiteral("GPT-4 Turbo"), QString::fromUcs4(U"\U0001F7E3", 1),
            QStringLiteral("Advanced reasoning and broader knowledge") },
        { QStringLiteral("gpt-4o-mini"), QStringLiteral("GPT-4o Mini"), QString::fromUcs4(U"\U0001F7E3", 1),
            QStringLiteral("Fast responses for everyday tasks") },
        { QStringLiteral("claude-instant"), QStringLiteral("Claude Instant"), QStringLiteral("AI"),
            QStringLiteral("Fast responses for everyday tasks") },
        { QStringLiteral("claude-3-5-sonnet-20240620"), QStringLiteral("Claude 3.5 Sonnet"), QStringLiteral("AI"),
            QStringLiteral("Fastest and most compact Claude 3 model") },
        { QStringLiteral("claude-3-opus-20240229"), QStringLiteral("Claude 3 Opus"), QStringLiteral("AI"),
            QStringLiteral("Excels at writing and complex tasks") },
        { QStringLiteral("claude-3-haiku-20240307"), QStringLiteral("Claude 3 Haiku"), QStringLiteral("AI"),
            QStringLiteral("Efficient model for shorter tasks") },
        { QStringLiteral("meta-llama/llama-3.1-8b-instruct:free"), QStringLiteral("Meta: Llama 3.1 8B (Free)"),
            QString::fromUcs4(U"\U0001F193", 1), QStringLiteral("Fast and efficient instruct-tuned model") },
        { QStringLiteral("google/gemma-2-9b-it:free"), QStringLiteral("Google: Gemma 2 9B (Free)"),
            QString::fromUcs4(U"\U0001F193", 1), QStringLiteral("Efficient open-source language model") },
        { QStringLiteral("qwen/qwen-2-vl-7b-instruct:free"), QStringLiteral("Qwen2 VL 7B (Free)"),
            QString::fromUcs4(U"\U0001F193", 1), QStringLiteral("Multimodal LLM from Qwen Team") },
        { QStringLiteral("nousresearch/hermes-3-llama-3.1-405b:free"), QStringLiteral("Nous: Hermes 3 405B (Free)"),
            QString::fromUcs4(U"\U0001F193", 1),
            QStringLiteral("Generalist language model with advanced capabilities") },
        { QStringLiteral("mistralai/mistral-7b-instruct:free"), QStringLiteral("Mistral: Mistral 7B Instruct (Free)"),
            QString::fromUcs4(U"\U0001F193", 1),
            QStringLiteral("High-performing 7.3B parameter model with optimizations for speed and context length") },
    };
    return models;
}

const QList<ImageModel> &imageModels()
{
    static const QList<ImageModel> models {
        { QStringLiteral("DALL-E"), QStringLiteral("DALL-E"),
            { QStringLiteral("text-to-image"), QStringLiteral("high-quality") } },
        { QStringLiteral("fal-ai/flux-pro"), QStringLiteral("FLUX.1 [pro]"),
            { QStringLiteral("text-to-image"), QStringLiteral("inference") } },
        { QStringLiteral("fal-ai/flux/schnell"), QStringLiteral("FLUX.1 [schnell]"),
            { QStringLiteral("text-to-image"), QStringLiteral("inference"), QStringLiteral("optimized") } },
        { QStringLiteral("fal-ai/stable-diffusion-v3-medium"), QStringLiteral("Stable Diffusion V3"),
            { QStringLiteral("text-to-image"), QStringLiteral("inference"), QStringLiteral("optimized") } },
        { QStringLiteral("fal-ai/fast-sdxl"), QStringLiteral("Stable Diffusion XL"),
            { QStringLiteral("text-to-image"), QStringLiteral("inference"), QStringLiteral("loras") } },
        { QStringLiteral("fal-ai/stable-cascade"), QStringLiteral("Stable Cascade"),
            { QStringLiteral("text-to-image"), QStringLiteral("inference"), QStringLiteral("lcm") } },
        { QStringLiteral("fal-ai/hyper-sdxl"), QStringLiteral("Hyper SDXL"),
            { QStringLiteral("text-to-image"), QStringLiteral("real-time") } },
        { QStringLiteral("fal-ai/pixart-sigma"), QStringLiteral("PixArt-") + QChar(0x03A3),
            { QStringLiteral("text-to-image"), QStringLiteral("inference"), QStringLiteral("realistic") } },
        { QStringLiteral("black-forest-labs/FLUX.1-schnell-Free"), QStringLiteral("FLUX.1 [schnell] Free"),
            { QStringLiteral("text-to-image"), QStringLiteral("inference"), QStringLiteral("free") } },
    };
    return models;
}

} // namespace zentrik::ModelCatalog
