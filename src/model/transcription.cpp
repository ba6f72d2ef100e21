// The transcription operation of APIManager; the request itself is TranscriptionRequest.
#include "model/apimanager.h"

#include "model/deliverlater.h"
#include "model/transcriptionrequest.h"

#include <QDebug>
#include <QFile>

namespace zentrik {

void APIManager::transcribe(const QString &audioFilePath, QObject *context, TranscriptionCompletion completion)
{
    const QString chosen = transcriptionProvider();
    const CustomProvider *custom = chosen.isEmpty() ? nullptr : m_customProviders->find(chosen);
    if (!chosen.isEmpty() && custom == nullptr) {
        // Never OpenAI instead: the user chose where their recordings go.
        const APIError error = APIError(APIError::unsupportedModel)
                                   .withDetails(tr("The provider %1 chosen to transcribe voice notes is gone; choose "
                                                   "another in Settings.")
                                                    .arg(chosen));
        deliverLater(this, context, [completion, error] { completion(error); });
        return;
    }
    const QString key = custom != nullptr ? m_customProviders->key(custom->name) : m_openAIKey;
    if (key.isEmpty() && (custom == nullptr || custom->hasKey)) {
        deliverLater(this, context, [completion] { completion(APIError::missingAPIKey); });
        return;
    }
    QFile file(audioFilePath);
    if (!file.open(QIODevice::ReadOnly)) {
        qInfo().noquote() << "Failed to read audio file: " + file.errorString();
        deliverLater(this, context, [completion] { completion(APIError::invalidRequestData); });
        return;
    }
    const QByteArray audio = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        qInfo().noquote() << "Failed to read audio file: " + file.errorString();
        deliverLater(this, context, [completion] { completion(APIError::invalidRequestData); });
        return;
    }
    file.close();

    const QByteArray boundary = TranscriptionRequest::newBoundary();
    HttpRequest request = custom == nullptr ? TranscriptionRequest::build(key, boundary, audio)
                                            : TranscriptionRequest::build(custom->transcriptionUrl(), key, boundary,
                                                audio, TranscriptionRequest::modelFor(custom->models()));
    qInfo().noquote()
        << QStringLiteral("Sending request to %1 API").arg(custom == nullptr ? QStringLiteral("OpenAI") : custom->name);
    m_http->send(std::move(request), context, [completion = std::move(completion)](const HttpResult &result) {
        completion(TranscriptionRequest::read(result));
    });
}

} // namespace zentrik
