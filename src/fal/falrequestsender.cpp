#include "fal/falrequestsender.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSysInfo>
#include <QUrlQuery>

namespace zentrik::fal {

namespace {

// A query value: text as it is, numbers and booleans in their JSON spelling, anything
// nested as its JSON text.
QString queryValue(const Payload &value)
{
    if (const auto text = value.toString()) {
        return *text;
    }
    const QByteArray json = value.toJsonBytes();
    return QString::fromUtf8(json);
}

bool isPathSegment(const QString &segment)
{
    static const QRegularExpression allowed(QStringLiteral("^[A-Za-z0-9._~-]+$"));
    return segment != QLatin1String(".") && segment != QLatin1String("..") && allowed.match(segment).hasMatch();
}

} // namespace

RequestSender::RequestSender(HttpClient *http, ClientConfig config)
    : m_http(http)
    , m_config(std::move(config))
{ }

std::variant<QString, FalError> RequestSender::normaliseAppId(const QString &id)
{
    static const QRegularExpression numericOwner(QStringLiteral("^([0-9]+)-([a-zA-Z0-9-]+)$"));
    const QRegularExpressionMatch match = numericOwner.match(id);
    const QString normalised = match.hasMatch() ? match.captured(1) + QLatin1Char('/') + match.captured(2) : id;
    const QStringList segments = normalised.split(QLatin1Char('/'));
    if (!std::all_of(segments.begin(), segments.end(), isPathSegment)) {
        return FalError::invalidAppId(id);
    }
    return normalised;
}

std::variant<QUrl, FalError> RequestSender::applicationUrl(const QString &appId, const QString &path)
{
    auto normalised = normaliseAppId(appId);
    if (auto *error = std::get_if<FalError>(&normalised)) {
        return std::move(*error);
    }
    const QString fullPath = QLatin1Char('/') + std::get<QString>(normalised) + path;
    QUrl url = serviceUrl(Service::queue, fullPath);
    if (!url.isValid()) {
        return FalError::invalidUrl(serviceBaseUrl(Service::queue).toString() + fullPath);
    }
    return url;
}

QByteArray RequestSender::userAgent()
{
    // Header values must be plain ASCII; a distribution name with other letters loses them.
    QByteArray system;
    for (const QChar c : QSysInfo::prettyProductName()) {
        if (c.unicode() >= 0x20 && c.unicode() < 0x7f) {
            system.append(char(c.unicode()));
        }
    }
    return QByteArray(clientName) + '/' + clientVersion + " - " + system;
}

std::variant<HttpRequest, FalError> RequestSender::build(
    const QUrl &target, HttpMethod method, const Payload &input) const
{
    if (!target.isValid() || target.host().isEmpty()) {
        return FalError::invalidUrl(target.toString());
    }
    QUrl address = target;
    HttpRequest request;
    request.method = wireName(method);
    request.timeout = timeout;
    if (method == HttpMethod::get) {
        if (const Payload::Dict *members = input.dict(); members != nullptr && !members->isEmpty()) {
            QUrlQuery query(address);
            for (auto it = members->cbegin(); it != members->cend(); ++it) {
                query.addQueryItem(it.key(), queryValue(it.value()));
            }
            address.setQuery(query);
        }
    } else if (!input.isNil()) {
        request.body = input.toJsonBytes();
    }

    request.headers.append({ QByteArrayLiteral("accept"), QByteArrayLiteral("application/json") });
    request.headers.append({ QByteArrayLiteral("content-type"), QByteArrayLiteral("application/json") });
    request.headers.append({ QByteArrayLiteral("user-agent"), userAgent() });
    request.headers.append({ QByteArrayLiteral("authorization"), "Key " + m_config.credentials.credential().toUtf8() });

    if (m_config.requestProxy) {
        const QUrl proxy(*m_config.requestProxy, QUrl::StrictMode);
        if (!proxy.isValid() || proxy.host().isEmpty()) {
            return FalError::invalidUrl(*m_config.requestProxy);
        }
        request.url = proxy;
        request.headers.append({ QByteArrayLiteral("x-fal-target-url"), address.toEncoded() });
    } else {
        request.url = address;
    }
    return request;
}

void RequestSender::later(QObject *context, std::function<void()> fn) const
{
    QObject *receiver = context != nullptr ? context : m_http.data();
    if (receiver == nullptr) {
        return;
    }
    QMetaObject::invokeMethod(receiver, std::move(fn), Qt::QueuedConnection);
}

void RequestSender::send(
    const QUrl &target, HttpMethod method, const Payload &input, QObject *context, Completion completion) const
{
    auto built = build(target, method, input);
    if (auto *error = std::get_if<FalError>(&built)) {
        later(context, [error = std::move(*error), completion = std::move(completion)] { completion(error); });
        return;
    }
    send(std::get<HttpRequest>(std::move(built)), context, std::move(completion));
}

void RequestSender::send(HttpRequest request, QObject *context, Completion completion) const
{
    // The manager owning the HTTP client has gone: so has everyone waiting for an answer.
    if (m_http.isNull()) {
        return;
    }
    m_http->send(std::move(request), context,
        [completion = std::move(completion)](const HttpResult &result) { completion(read(result)); });
}

Result<Payload> RequestSender::read(const HttpResult &result)
{
    if (const auto *error = std::get_if<TransportError>(&result)) {
        return *error;
    }
    const auto &response = std::get<HttpResponse>(result);
    if (response.status == 401 || response.status == 403) {
        return FalError::unauthorized(errorMessage(response.body));
    }
    if (!response.isSuccess()) {
        return FalError::httpError(response.status, errorMessage(response.body), Payload::fromJsonBytes(response.body));
    }
    if (response.body.trimmed().isEmpty()) {
        return Payload {};
    }
    if (auto payload = Payload::fromJsonBytes(response.body)) {
        return std::move(*payload);
    }
    return FalError::invalidResultFormat();
}

QString RequestSender::errorMessage(const QByteArray &body)
{
    const QJsonDocument document = QJsonDocument::fromJson(body);
    if (document.isObject()) {
        const QJsonObject object = document.object();
        const QJsonValue detail = object.value(QLatin1String("detail"));
        if (detail.isString()) {
            return detail.toString();
        }
        if (detail.isArray()) {
            QStringList messages;
            for (const auto &item : detail.toArray()) {
                const QString message = item.toObject().value(QLatin1String("msg")).toString();
                if (!message.isEmpty()) {
                    messages.append(message);
                }
            }
            if (!messages.isEmpty()) {
                return messages.join(QStringLiteral("; "));
            }
        }
        for (const char *key : { "message", "error" }) {
            const QJsonValue value = object.value(QLatin1String(key));
            if (value.isString()) {
                return value.toString();
            }
            if (const QJsonValue nested = value.toObject().value(QLatin1String("message")); nested.isString()) {
                return nested.toString();
            }
        }
        return {};
    }
    // A short plain-text body says what went wrong; anything long or binary says nothing useful.
    QString text = QString::fromUtf8(body).trimmed();
    constexpr qsizetype longest = 200;
    if (text.size() > longest || text.contains(QChar::ReplacementCharacter)) {
        return {};
    }
    return text;
}

} // namespace zentrik::fal
