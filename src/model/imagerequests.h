#pragma once

#include "fal/falpayload.h"
#include "model/apierror.h"
#include "model/imageerror.h"
#include "model/providerrouting.h"
#include "net/httprequest.h"
#include "net/httpresponse.h"

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <chrono>
#include <variant>

namespace zentrik {

// The image requests of the three providers and the reading of their answers. Each request
// carries its own fixed picture size; the size picked on the screen is not sent.
class ImageRequests
{
public:
    static constexpr std::chrono::milliseconds timeout { 60000 };
    static constexpr const char *path = "/v1/images/generations";
    static constexpr const char *openAIModel = "dall-e-3";
    static constexpr const char *openAISize = "1024x1024";
    static constexpr const char *togetherModel = "black-forest-labs/FLUX.1-schnell-Free";
    static constexpr int togetherWidth = 1024;
    static constexpr int togetherHeight = 768;
    static constexpr int togetherSteps = 4;

    [[nodiscard]] static QUrl endpoint(ImageProvider provider);

    // Both fail with invalidRequestData when the prompt cannot be written as JSON (text
    // with broken surrogate pairs).
    [[nodiscard]] static std::variant<HttpRequest, APIError> buildOpenAI(const QString &prompt, const QString &key);
    [[nodiscard]] static std::variant<HttpRequest, APIError> buildTogether(const QString &prompt, const QString &key);

    // The picture's address: transport failure, no body, not JSON, no "data"[0]."url" string,
    // in that order.
    [[nodiscard]] static std::variant<QString, APIError> readOpenAI(const HttpResult &result);
    // Whether a picture address from a provider may be fetched: http or https with a host.
    // Anything else (file:, data:, …) would have the program read what the provider chose.
    [[nodiscard]] static bool isRemotePictureAddress(const QString &address);
    [[nodiscard]] static ImageError refusedPictureAddress();
    // The picture's bytes from "data"[0]."b64_json", strictly Base64-decoded; the same order.
    [[nodiscard]] static std::variant<QByteArray, APIError> readTogether(const HttpResult &result);
    // Decodes the picture, writes it as PNG to directory under a fresh UUID name and returns
    // the file's address; invalidResponse when the bytes are not a picture.
    [[nodiscard]] static std::variant<QString, ImageError> writeTogetherImage(
        const QByteArray &imageBytes, const QString &directory);

    // The input of every fal image model: the prompt alone, so each model uses its defaults.
    [[nodiscard]] static fal::Payload falInput(const QString &prompt);
    // "images"[0]."url" of a fal result, or the "No image URL found in response" error.
    [[nodiscard]] static std::variant<QString, ImageError> readFalResult(const fal::Payload &result);
};

} // namespace zentrik
