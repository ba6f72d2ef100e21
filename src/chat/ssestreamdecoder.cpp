#include "chat/ssestreamdecoder.h"

#include <QCoreApplication>
#include <QJsonDocument>

namespace zentrik {

QString sseLineTooLong(qsizetype limit)
{
    return QCoreApplication::translate("ChatStreamDecoder", "A line of the reply is longer than %1 MiB.")
        .arg(limit / (qsizetype(1024) * 1024));
}

std::variant<QJsonObject, QString> sseDataObject(QByteArrayView data)
{
    QJsonParseError parseError {};
    const QJsonDocument document = QJsonDocument::fromJson(data.toByteArray(), &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        return parseError.errorString();
    }
    if (!document.isObject()) {
        return QStringLiteral("not a JSON object");
    }
    return document.object();
}

ChatError sseServiceError(const QJsonObject &object)
{
    ChatError error;
    error.kind = ChatError::Kind::serviceError;
    error.message = ChatError::serviceMessage(object);
    if (error.message.isEmpty()) {
        error.message = QCoreApplication::translate("ChatStreamDecoder", "The service reported an error.");
    }
    return error;
}

} // namespace zentrik
