#include "model/jsonbody.h"

#include <QJsonDocument>

namespace zentrik {

std::variant<QJsonObject, APIError> jsonBody(const QByteArray &body)
{
    if (body.isEmpty()) {
        return APIError::noData;
    }
    QJsonParseError parseError {};
    const QJsonDocument document = QJsonDocument::fromJson(body, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        return APIError { APIError::jsonParsingFailed, parseError.errorString() };
    }
    return document.object();
}

} // namespace zentrik
