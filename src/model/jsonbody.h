#pragma once

#include <QByteArray>
#include <QJsonObject>

#include <variant>

#include "model/apierror.h"

namespace zentrik {

// The first step of reading every JSON answer: an empty body is noData, a body that is no
// JSON is jsonParsingFailed with the parser's reason, and anything else is the object it
// holds (empty when the JSON is no object, which the caller's shape check then refuses).
[[nodiscard]] std::variant<QJsonObject, APIError> jsonBody(const QByteArray &body);

} // namespace zentrik
