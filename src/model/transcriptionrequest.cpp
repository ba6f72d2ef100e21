#include "model/transcriptionrequest.h"

#include "chat/chaterror.h"
#include "model/jsonbody.h"
#include "model/modellogging.h"
#include "model/providerrouting.h"

#include <QDebug>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>

namespace zentrik {

namespace {
constexpr QByteArrayView crlf = "\r\n";
} // namespace

QUrl TranscriptionRequest::endpoint()
{
    return providerUrl(Provider::openAI, QStringLiteral("/v1/audio/transcriptions"));
}

QByteArray TranscriptionRequest::newBoundary()
{
    return QUuid::createUuid().toByteArray(QUuid::WithoutBraces).toUpper();
}

QByteArray TranscriptionRequest::body(const QByteArray &boundary, const QByteArray &audio, const QByteArray &modelName)
{
    QByteArray body;
    body.reserve(audio.size() + 4 * boundary.size() + 256);
    body.append("--").append(boundary).append(crlf);
    body.append(R"(Content-Disposition: form-data; name="model")").append(crlf).append(crlf);
    body.append(modelName).append(crlf);
    body.append("--").append(boundary).append(crlf);
    body.append(R"(Content-Disposition: form-data; name="file"; filename=")")
        .append(audioFileName)
        .append("\"")
        .append(crlf);
    body.append("Content-Type: ").append(audioContentType).append(crlf).append(crlf);
    body.append(audio);
    body.append(crlf);
    body.append("--").append(boundary).append("--").append(crlf);
    return body;
}

HttpRequest TranscriptionRequest::build(const QString &key, const QByteArray &boundary, const QByteArray &audio)
{
    return build(endpoint(), key, boundary, audio, model);
}

HttpRequest TranscriptionRequest::build(const QUrl &url, const QString &key, const QByteArray &boundary,
    const QByteArray &audio, const QByteArray &modelName)
{
    HttpRequest request;
    request.method = QByteArrayLiteral("POST");
    request.url = url;
    request.timeout = timeout;
    if (!key.isEmpty()) {
        request.headers.append({ QByteArrayLiteral("Authorization"), "Bearer " + key.toUtf8() });
    }
    request.headers.append({ QByteArrayLiteral("Content-Type"), "multipart/form-data; boundary=" + boundary });
    request.body = body(boundary, audio, modelName);
    return request;
}

QByteArray TranscriptionRequest::modelFor(const QStringList &served)
{
    const QString standard = QString::fromLatin1(model);
    if (served.contains(standard)) {
        return model;
    }
    for (const QString &candidate : served) {
        if (candidate.contains(QLatin1String("whisper"), Qt::CaseInsensitive)) {
            return candidate.toUtf8();
        }
    }
    return model;
}

std::variant<QString, APIError> TranscriptionRequest::read(const HttpResult &result)
{
    if (const auto *error = std::get_if<TransportError>(&result)) {
        qInfo().noquote() << "API request failed: " + error->description;
        return APIError::fromTransport(*error);
    }
    const auto &response = std::get<HttpResponse>(result);
    if (!response.isSuccess()) {
        // Not a failure of its own (the body decides), but whoever reads the log wants the
        // service's words; keys never appear in them.
        const QString said = ChatError::serviceMessage(response.body);
        qCInfo(lcModel).noquote() << QStringLiteral("OpenAI transcription answered HTTP %1%2")
                                         .arg(response.status)
                                         .arg(said.isEmpty() ? QString() : QStringLiteral(": ") + said);
    }
    auto body = jsonBody(response.body);
    if (auto *error = std::get_if<APIError>(&body)) {
        if (error->kind() == APIError::noData) {
            qInfo().noquote() << "No data received from API";
        } else {
            qInfo().noquote() << "Failed to parse API response: " + error->description();
        }
        return std::move(*error);
    }
    const QJsonValue text = std::get<QJsonObject>(body).value(QLatin1String("text"));
    if (!text.isString()) {
        qInfo().noquote() << "Invalid response format from API";
        return APIError::invalidResponse;
    }
    qInfo().noquote() << "Transcription received from API: " + text.toString();
    return text.toString();
}

} // namespace zentrik
