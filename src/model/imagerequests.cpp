#include "model/imagerequests.h"

#include "model/imagecodec.h"
#include "model/jsonbody.h"
#include "model/modellogging.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>

namespace zentrik {

namespace {

HttpRequest jsonPost(const QUrl &url, const QString &key, const QJsonObject &body)
{
    HttpRequest request;
    request.method = QByteArrayLiteral("POST");
    request.url = url;
    request.timeout = ImageRequests::timeout;
    request.headers.append({ QByteArrayLiteral("Content-Type"), QByteArrayLiteral("application/json") });
    request.headers.append({ QByteArrayLiteral("Authorization"), "Bearer " + key.toUtf8() });
    request.body = QJsonDocument(body).toJson(QJsonDocument::Compact);
    return request;
}

// The first element of "data" when the answer has the shape both providers use; otherwise
// the error that ends the request, checked in the providers' order.
std::variant<QJsonObject, APIError> firstDataElement(const HttpResult &result, const char *provider)
{
    if (const auto *error = std::get_if<TransportError>(&result)) {
        return APIError::fromTransport(*error);
    }
    const auto &response = std::get<HttpResponse>(result);
    if (!response.isSuccess()) {
        qCInfo(lcModel).noquote()
            << QStringLiteral("%1 images answered HTTP %2").arg(QLatin1String(provider)).arg(response.status);
    }
    auto body = jsonBody(response.body);
    if (auto *error = std::get_if<APIError>(&body)) {
        return std::move(*error);
    }
    const QJsonValue data = std::get<QJsonObject>(body).value(QLatin1String("data"));
    if (!data.isArray() || data.toArray().isEmpty()) {
        return APIError::invalidResponse;
    }
    const QJsonArray elements = data.toArray();
    if (!std::all_of(elements.begin(), elements.end(), [](const QJsonValue &element) { return element.isObject(); })) {
        return APIError::invalidResponse;
    }
    return elements.first().toObject();
}

} // namespace

bool ImageRequests::isRemotePictureAddress(const QString &address)
{
    const QUrl url(address, QUrl::StrictMode);
    const QString scheme = url.scheme().toLower();
    return url.isValid() && (scheme == QLatin1String("https") || scheme == QLatin1String("http"))
        && !url.host().isEmpty();
}

ImageError ImageRequests::refusedPictureAddress()
{
    // The words the image screen uses for any address it cannot load.
    return DomainError { QStringLiteral("ImageURL"), 0,
        QCoreApplication::translate("ImageGeneratorViewModel", "Invalid image URL") };
}

QUrl ImageRequests::endpoint(ImageProvider provider)
{
    switch (provider) {
    case ImageProvider::openAI:
        return providerUrl(Provider::openAI, QLatin1String(path));
    case ImageProvider::together:
        return providerUrl(Provider::together, QLatin1String(path));
    case ImageProvider::fal:
        break;
    }
    return {};
}

std::variant<HttpRequest, APIError> ImageRequests::buildOpenAI(const QString &prompt, const QString &key)
{
    if (!prompt.isValidUtf16()) {
        return APIError::invalidRequestData;
    }
    return jsonPost(endpoint(ImageProvider::openAI), key,
        QJsonObject {
            { QStringLiteral("model"), QLatin1String(openAIModel) },
            { QStringLiteral("prompt"), prompt },
            { QStringLiteral("n"), 1 },
            { QStringLiteral("size"), QLatin1String(openAISize) },
        });
}

std::variant<HttpRequest, APIError> ImageRequests::buildTogether(const QString &prompt, const QString &key)
{
    if (!prompt.isValidUtf16()) {
        return APIError::invalidRequestData;
    }
    return jsonPost(endpoint(ImageProvider::together), key,
        QJsonObject {
            { QStringLiteral("model"), QLatin1String(togetherModel) },
            { QStringLiteral("prompt"), prompt },
            { QStringLiteral("width"), togetherWidth },
            { QStringLiteral("height"), togetherHeight },
            { QStringLiteral("steps"), togetherSteps },
            { QStringLiteral("n"), 1 },
            { QStringLiteral("response_format"), QStringLiteral("b64_json") },
        });
}

std::variant<QString, APIError> ImageRequests::readOpenAI(const HttpResult &result)
{
    auto first = firstDataElement(result, "OpenAI");
    if (auto *error = std::get_if<APIError>(&first)) {
        return std::move(*error);
    }
    const QJsonValue url = std::get<QJsonObject>(first).value(QLatin1String("url"));
    if (!url.isString()) {
        return APIError::invalidResponse;
    }
    return url.toString();
}

std::variant<QByteArray, APIError> ImageRequests::readTogether(const HttpResult &result)
{
    auto first = firstDataElement(result, "Together");
    if (auto *error = std::get_if<APIError>(&first)) {
        return std::move(*error);
    }
    const QJsonValue encoded = std::get<QJsonObject>(first).value(QLatin1String("b64_json"));
    if (!encoded.isString()) {
        return APIError::invalidResponse;
    }
    const QByteArray::FromBase64Result decoded = QByteArray::fromBase64Encoding(
        encoded.toString().toLatin1(), QByteArray::Base64Encoding | QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || decoded.decoded.isEmpty()) {
        return APIError::invalidResponse;
    }
    return decoded.decoded;
}

std::variant<QString, ImageError> ImageRequests::writeTogetherImage(
    const QByteArray &imageBytes, const QString &directory)
{
    const QByteArray png = ImageCodec::toPng(imageBytes);
    if (png.isEmpty()) {
        return ImageError(APIError::invalidResponse);
    }
    const QString path
        = QDir(directory).absoluteFilePath(QUuid::createUuid().toString(QUuid::WithoutBraces) + QStringLiteral(".png"));
    QFile file(path);
    // Readable by its owner alone: the picture is the user's, in a folder every user shares.
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly, QFileDevice::ReadOwner | QFileDevice::WriteOwner)
        || file.write(png) != png.size() || !file.flush()) {
        const QString reason = file.errorString();
        const int code = int(file.error());
        file.close();
        file.remove();
        return ImageError(DomainError { QStringLiteral("ImageFile"), code,
            QCoreApplication::translate("ImageRequests", "Failed to write the image: %1").arg(reason) });
    }
    file.close();
    return QUrl::fromLocalFile(path).toString();
}

fal::Payload ImageRequests::falInput(const QString &prompt)
{
    return fal::Payload::Dict { { QStringLiteral("prompt"), prompt } };
}

std::variant<QString, ImageError> ImageRequests::readFalResult(const fal::Payload &result)
{
    const fal::Payload imagesValue = result.value(QStringLiteral("images"));
    const fal::Payload::Array *images = imagesValue.array();
    if (images == nullptr || images->empty()) {
        return ImageError::noImageUrl();
    }
    const std::optional<QString> url = images->front().value(QStringLiteral("url")).toString();
    if (!url) {
        return ImageError::noImageUrl();
    }
    if (!isRemotePictureAddress(*url)) {
        return refusedPictureAddress();
    }
    return *url;
}

} // namespace zentrik
