#pragma once

#include <QByteArray>
#include <QList>

#include <utility>
#include <variant>

#include "net/transporterror.h"

namespace zentrik {

struct HttpResponse
{
    int status = 0;
    QList<std::pair<QByteArray, QByteArray>> headers;
    QByteArray body;

    [[nodiscard]] bool isSuccess() const { return status >= 200 && status < 300; }
    [[nodiscard]] QByteArray header(QByteArrayView name) const;
};

// Either an HTTP answer (of any status) or the reason there was none.
using HttpResult = std::variant<HttpResponse, TransportError>;

} // namespace zentrik
