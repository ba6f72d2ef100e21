#include "net/httprequest.h"
#include "net/httpresponse.h"

#include <algorithm>

namespace zentrik {

namespace {
bool sameName(QByteArrayView a, QByteArrayView b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}
} // namespace

void HttpRequest::setHeader(const QByteArray &name, const QByteArray &value)
{
    for (auto &entry : headers) {
        if (sameName(entry.first, name)) {
            entry.second = value;
            return;
        }
    }
    headers.append({ name, value });
}

QByteArray HttpRequest::header(QByteArrayView name) const
{
    for (const auto &entry : headers) {
        if (sameName(entry.first, name)) {
            return entry.second;
        }
    }
    return {};
}

void HttpRequest::removeHeader(QByteArrayView name)
{
    headers.removeIf([name](const auto &entry) { return sameName(entry.first, name); });
}

QByteArray HttpResponse::header(QByteArrayView name) const
{
    for (const auto &entry : headers) {
        if (sameName(entry.first, name)) {
            return entry.second;
        }
    }
    return {};
}

} // namespace zentrik
