// The image operations of APIManager: the provider chosen by the selected image model, the
// OpenAI and Together requests, and the fal path through the queue client.
#include "model/apimanager.h"

#include "fal/falapi.h"
#include "model/backgroundtask.h"
#include "model/deliverlater.h"
#include "model/imagerequests.h"
#include "model/modellogging.h"

#include <QDir>

namespace zentrik {

void APIManager::generateImage(
    const QString &prompt, QObject *context, ImageCompletion completion, ImageProgress onProgress)
{
    const QString model = m_selectedImageModel;
    switch (routeImageModel(model)) {
    case ImageProvider::openAI:
        generateOpenAIImage(prompt, context, std::move(completion));
        return;
    case ImageProvider::together:
        generateTogetherImage(prompt, context, std::move(completion));
        return;
    case ImageProvider::fal:
        generateFalImage(model, prompt, context, std::move(completion), std::move(onProgress));
        return;
    }
}

void APIManager::generateOpenAIImage(const QString &prompt, QObject *context, ImageCompletion completion)
{
    if (m_openAIKey.isEmpty()) {
        deliverLater(this, context, [completion] { completion(ImageError(APIError::missingAPIKey)); });
        return;
    }
    auto request = ImageRequests::buildOpenAI(prompt, m_openAIKey);
    if (const auto *error = std::get_if<APIError>(&request)) {
        deliverLater(this, context, [completion, error = *error] { completion(ImageError(error)); });
        return;
    }
    m_http->send(std::get<HttpRequest>(std::move(request)), context,
        [completion = std::move(completion)](const HttpResult &result) {
            auto address = ImageRequests::readOpenAI(result);
            if (const auto *error = std::get_if<APIError>(&address)) {
                completion(ImageError(*error));
                return;
            }
            if (!ImageRequests::isRemotePictureAddress(std::get<QString>(address))) {
                completion(ImageRequests::refusedPictureAddress());
                return;
            }
            completion(std::get<QString>(address));
        });
}

void APIManager::generateTogetherImage(const QString &prompt, QObject *context, ImageCompletion completion)
{
    if (m_togetherApiKey.isEmpty()) {
        qCInfo(lcModel).noquote() << "This build carries no key for the free image model (ZENTRIK_TOGETHER_KEY)";
        deliverLater(this, context, [completion] { completion(ImageError(APIError::missingBuiltInKey())); });
        return;
    }
    auto request = ImageRequests::buildTogether(prompt, m_togetherApiKey);
    if (const auto *error = std::get_if<APIError>(&request)) {
        deliverLater(this, context, [completion, error = *error] { completion(ImageError(error)); });
        return;
    }
    QPointer<QObject> guard(context);
    const bool hasContext = context != nullptr;
    m_http->send(std::get<HttpRequest>(std::move(request)), context,
        [this, guard, hasContext, completion = std::move(completion)](const HttpResult &result) {
            auto bytes = ImageRequests::readTogether(result);
            if (const auto *error = std::get_if<APIError>(&bytes)) {
                completion(ImageError(*error));
                return;
            }
            // Decoding and re-encoding a large picture takes long enough to stall the window.
            runInBackground(
                this,
                [bytes = std::get<QByteArray>(std::move(bytes)), directory = QDir::tempPath()] {
                    return ImageRequests::writeTogetherImage(bytes, directory);
                },
                [guard, hasContext, completion](const ImageResult &written) {
                    if (hasContext && guard.isNull()) {
                        return;
                    }
                    completion(written);
                });
        });
}

void APIManager::generateFalImage(const QString &modelId, const QString &prompt, QObject *context,
    ImageCompletion completion, ImageProgress onProgress)
{
    if (m_falAIKey.isEmpty()) {
        deliverLater(this, context, [completion] { completion(ImageError(APIError::missingAPIKey)); });
        return;
    }
    const fal::FalApi api(m_http, fal::ClientConfig { fal::ClientCredentials::keyPair(m_falAIKey), std::nullopt });
    fal::QueueClient::SubscribeOptions options;
    options.pollInterval = m_falPollInterval;
    options.timeout = m_falTimeLimit;
    options.includeLogs = false;
    options.onQueueUpdate = std::move(onProgress);
    api.queue().subscribe(modelId, ImageRequests::falInput(prompt), std::move(options), context,
        [this, context, completion = std::move(completion)](const fal::Result<fal::Payload> &result) {
            ImageResult outcome;
            if (const auto *error = std::get_if<fal::ClientError>(&result)) {
                outcome = ImageError(*error);
            } else {
                auto address = ImageRequests::readFalResult(std::get<fal::Payload>(result));
                outcome = std::visit(
                    [](auto &&value) { return ImageResult(std::forward<decltype(value)>(value)); }, std::move(address));
            }
            // The fal path always answers on a later turn of the event loop.
            deliverLater(this, context, [completion, outcome] { completion(outcome); });
        });
}

void APIManager::setFalPolling(std::chrono::nanoseconds interval, std::optional<std::chrono::nanoseconds> timeLimit)
{
    m_falPollInterval = interval;
    m_falTimeLimit = timeLimit;
}

void APIManager::overrideTogetherKey(const QString &key)
{
    if (!key.isEmpty()) {
        m_togetherApiKey = key;
    }
}

} // namespace zentrik
