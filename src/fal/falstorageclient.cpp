#include "fal/falstorageclient.h"

namespace zentrik::fal {

StorageClient::StorageClient(std::shared_ptr<const RequestSender> sender)
    : m_sender(std::move(sender))
{ }

void StorageClient::upload(const QByteArray &data, const QString &contentType, const QString &fileName,
    QObject *context, const std::function<void(const Result<QString> &)> &completion) const
{
    const QString type = contentType.isEmpty() ? QString::fromLatin1(defaultContentType) : contentType;
    const QUrl initiate = serviceUrl(Service::rest, QString::fromLatin1(initiatePath));
    if (!initiate.isValid()) {
        const QString address = serviceBaseUrl(Service::rest).toString() + QLatin1String(initiatePath);
        m_sender->later(context, [address, completion] { completion(FalError::invalidUrl(address)); });
        return;
    }
    const Payload request(Payload::Dict {
        { QStringLiteral("content_type"), type },
        { QStringLiteral("file_name"), fileName },
    });
    QPointer<QObject> guard(context);
    m_sender->send(initiate, HttpMethod::post, request, context,
        [sender = m_sender, data, type, guard, completion](const Result<Payload> &result) {
            if (const auto *error = std::get_if<ClientError>(&result)) {
                completion(*error);
                return;
            }
            const auto &answer = std::get<Payload>(result);
            const std::optional<QString> uploadUrl = answer.value(QStringLiteral("upload_url")).toString();
            const std::optional<QString> fileUrl = answer.value(QStringLiteral("file_url")).toString();
            const QUrl target(uploadUrl.value_or(QString()), QUrl::StrictMode);
            if (!uploadUrl || !fileUrl || !target.isValid() || target.host().isEmpty()) {
                completion(FalError::invalidResultFormat());
                return;
            }
            // The upload address is signed for this one file: it gets the bytes and their
            // type, never the key.
            HttpRequest put;
            put.method = QByteArrayLiteral("PUT");
            put.url = target;
            put.timeout = RequestSender::timeout;
            put.headers.append({ QByteArrayLiteral("content-type"), type.toUtf8() });
            put.body = data;
            sender->send(std::move(put), guard.data(), [fileUrl = *fileUrl, completion](const Result<Payload> &sent) {
                if (const auto *error = std::get_if<ClientError>(&sent)) {
                    completion(*error);
                    return;
                }
                completion(fileUrl);
            });
        });
}

} // namespace zentrik::fal
