#include "fal/falqueueclient.h"

#include <QCoreApplication>
#include <QJsonObject>
#include <QPointer>
#include <QTimer>

namespace zentrik::fal {

namespace {

// The part of a URL path after the application's address.
QString requestPath(const QString &requestId, const char *suffix = "")
{
    return QStringLiteral("/requests/") + QString::fromLatin1(QUrl::toPercentEncoding(requestId))
        + QLatin1String(suffix);
}

} // namespace

Sleeper timerSleeper()
{
    return [](std::chrono::nanoseconds duration, QObject *context, std::function<void()> wake) {
        if (context == nullptr) {
            return;
        }
        // Round up: waking early would ask the queue sooner than the caller wanted.
        const auto wait = std::chrono::ceil<std::chrono::milliseconds>(duration);
        QTimer::singleShot(std::max(wait, std::chrono::milliseconds(0)), Qt::PreciseTimer, context, std::move(wake));
    };
}

struct QueueClient::Subscription
{
    QString appId;
    QString requestId;
    SubscribeOptions options;
    QPointer<QObject> context;
    bool hasContext = false;
    std::chrono::steady_clock::time_point startedAt;
    std::function<void(const Result<Payload> &)> completion;

    [[nodiscard]] QObject *timerContext(const RequestSender &sender) const
    {
        return hasContext ? context.data() : static_cast<QObject *>(sender.http());
    }
};

QueueClient::QueueClient(std::shared_ptr<const RequestSender> sender)
    : m_sender(std::move(sender))
{ }

void QueueClient::submit(const QString &appId, const Payload &input, const std::optional<QString> &webhookUrl,
    QObject *context, const std::function<void(const Result<QString> &)> &completion) const
{
    auto address = RequestSender::applicationUrl(appId);
    if (auto *error = std::get_if<FalError>(&address)) {
        m_sender->later(context, [error = *error, completion] { completion(error); });
        return;
    }
    QUrl target = std::get<QUrl>(address);
    if (webhookUrl) {
        target.setQuery(QStringLiteral("fal_webhook=") + QString::fromLatin1(QUrl::toPercentEncoding(*webhookUrl)));
    }
    m_sender->send(target, HttpMethod::post, input, context, [completion](const Result<Payload> &result) {
        if (const auto *error = std::get_if<ClientError>(&result)) {
            completion(*error);
            return;
        }
        const auto &answer = std::get<Payload>(result);
        const std::optional<QString> requestId = answer.value(QStringLiteral("request_id")).toString();
        if (!requestId || requestId->isEmpty()) {
            completion(FalError::invalidResultFormat());
            return;
        }
        completion(*requestId);
    });
}

void QueueClient::status(const QString &appId, const QString &requestId, bool includeLogs, QObject *context,
    const std::function<void(const Result<QueueStatus> &)> &completion) const
{
    auto address = RequestSender::applicationUrl(appId, requestPath(requestId, "/status"));
    if (auto *error = std::get_if<FalError>(&address)) {
        m_sender->later(context, [error = *error, completion] { completion(error); });
        return;
    }
    const Payload query(Payload::Dict { { QStringLiteral("logs"), Payload(includeLogs ? 1 : 0) } });
    m_sender->send(
        std::get<QUrl>(address), HttpMethod::get, query, context, [completion](const Result<Payload> &result) {
            if (const auto *error = std::get_if<ClientError>(&result)) {
                completion(*error);
                return;
            }
            const QJsonValue json = std::get<Payload>(result).toJson();
            if (!json.isObject()) {
                completion(DecodingError { QCoreApplication::translate("fal", "The status answer is not an object") });
                return;
            }
            auto decoded = QueueStatus::fromJson(json.toObject());
            if (const auto *error = std::get_if<DecodingError>(&decoded)) {
                completion(*error);
                return;
            }
            completion(std::get<QueueStatus>(decoded));
        });
}

void QueueClient::response(const QString &appId, const QString &requestId, QObject *context,
    std::function<void(const Result<Payload> &)> completion) const
{
    auto address = RequestSender::applicationUrl(appId, requestPath(requestId));
    if (auto *error = std::get_if<FalError>(&address)) {
        m_sender->later(context, [error = *error, completion] { completion(error); });
        return;
    }
    m_sender->send(std::get<QUrl>(address), HttpMethod::get, Payload {}, context, std::move(completion));
}

void QueueClient::subscribe(const QString &appId, const Payload &input, SubscribeOptions options, QObject *context,
    std::function<void(const Result<Payload> &)> completion) const
{
    auto subscription = std::make_shared<Subscription>();
    subscription->appId = appId;
    subscription->options = std::move(options);
    subscription->context = context;
    subscription->hasContext = context != nullptr;
    subscription->startedAt = std::chrono::steady_clock::now();
    subscription->completion = std::move(completion);

    submit(appId, input, std::nullopt, context, [this_ = *this, subscription](const Result<QString> &result) {
        if (const auto *error = std::get_if<ClientError>(&result)) {
            subscription->completion(*error);
            return;
        }
        subscription->requestId = std::get<QString>(result);
        this_.poll(subscription);
    });
}

void QueueClient::poll(const std::shared_ptr<Subscription> &subscription) const
{
    if (subscription->hasContext && subscription->context.isNull()) {
        return;
    }
    status(subscription->appId, subscription->requestId, subscription->options.includeLogs,
        subscription->context.data(), [this_ = *this, subscription](const Result<QueueStatus> &result) {
            if (const auto *error = std::get_if<ClientError>(&result)) {
                subscription->completion(*error);
                return;
            }
            const auto &status = std::get<QueueStatus>(result);
            if (subscription->options.onQueueUpdate) {
                subscription->options.onQueueUpdate(status);
            }
            if (status.isCompleted()) {
                this_.response(subscription->appId, subscription->requestId, subscription->context.data(),
                    subscription->completion);
                return;
            }
            const auto elapsed = std::chrono::steady_clock::now() - subscription->startedAt;
            if (subscription->options.timeout && elapsed > *subscription->options.timeout) {
                subscription->completion(FalError::queueTimeout());
                return;
            }
            QObject *timerContext = subscription->timerContext(*this_.m_sender);
            this_.m_sleeper(
                subscription->options.pollInterval, timerContext, [this_, subscription] { this_.poll(subscription); });
        });
}

} // namespace zentrik::fal
