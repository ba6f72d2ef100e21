#include "net/httprequest.h"
#include "net/httpresponse.h"

#include <algorithm>

namespace zentrik {

namespace {
bool sameName(QByteArrayView a, QByteArrayView b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

bool isSafeHeaderText(QByteArrayView text, bool allowTab)
{
    return std::none_of(text.begin(), text.end(), [allowTab](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return (byte < 0x20 && !(allowTab && byte == '\t')) || byte == 0x7f;
    });
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

bool HttpRequest::headersAreSafe() const
{
    return std::all_of(headers.begin(), headers.end(), [](const auto &entry) {
        return !entry.first.isEmpty() && isSafeHeaderText(entry.first, false) && isSafeHeaderText(entry.second, true);
    });
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
