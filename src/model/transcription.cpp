// The transcription operation of APIManager; the request itself is TranscriptionRequest.
#include "model/apimanager.h"

#include "model/transcriptionrequest.h"

#include <QDebug>
#include <QFile>

namespace zentrik {

void APIManager::transcribe(const QString &audioFilePath, QObject *context, TranscriptionCompletion completion)
{
    if (m_openAIKey.isEmpty()) {
        deliverLater(context, [completion] { completion(APIError::missingAPIKey); });
        return;
    }
    QFile file(audioFilePath);
    if (!file.open(QIODevice::ReadOnly)) {
        qInfo().noquote() << "Failed to read audio file: " + file.errorString();
        deliverLater(context, [completion] { completion(APIError::invalidRequestData); });
        return;
    }
    const QByteArray audio = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        qInfo().noquote() << "Failed to read audio file: " + file.errorString();
        deliverLater(context, [completion] { completion(APIError::invalidRequestData); });
        return;
    }
    file.close();

    HttpRequest request = TranscriptionRequest::build(m_openAIKey, TranscriptionRequest::newBoundary(), audio);
    qInfo().noquote() << "Sending request to OpenAI API";
    m_http->send(std::move(request), context, [completion = std::move(completion)](const HttpResult &result) {
        completion(TranscriptionRequest::read(result));
    });
}

} // namespace zentrik
