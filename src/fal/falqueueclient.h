#pragma once

#include "fal/falqueuestatus.h"
#include "fal/falrequestsender.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace zentrik::fal {

// Waits `duration`, then calls wake on context's thread; never calls it once context is
// gone. The queue client sleeps through one of these between two status requests, so a
// test can see the pause it asked for without waiting it out.
using Sleeper = std::function<void(std::chrono::nanoseconds duration, QObject *context, std::function<void()> wake)>;

// A timer on the event loop: the thread goes on working while the client waits.
[[nodiscard]] Sleeper timerSleeper();

// The queue of fal applications: submit a request, ask how it stands, fetch its result, or
// all three in a row (subscribe). Every completion runs once, on the HTTP client's thread,
// never from inside the call that started it and never after its context is destroyed.
class QueueClient
{
public:
    struct SubscribeOptions
    {
        // The pause between two status requests.
        std::chrono::nanoseconds pollInterval = std::chrono::milliseconds(500);
        // How long the request may take from submission on; none waits for ever.
        std::optional<std::chrono::nanoseconds> timeout;
        bool includeLogs = false;
        // Each status as it arrives.
        std::function<void(const QueueStatus &status)> onQueueUpdate;
    };

    explicit QueueClient(std::shared_ptr<const RequestSender> sender);

    void setSleeper(Sleeper sleeper) { m_sleeper = std::move(sleeper); }

    // POST of the input to the application's queue address; the request id. A webhook
    // address, when given, is told when the request is done.
    void submit(const QString &appId, const Payload &input, const std::optional<QString> &webhookUrl, QObject *context,
        const std::function<void(const Result<QString> &)> &completion) const;
    // GET "/requests/<id>/status" on the application's queue address.
    void status(const QString &appId, const QString &requestId, bool includeLogs, QObject *context,
        const std::function<void(const Result<QueueStatus> &)> &completion) const;
    // GET "/requests/<id>" on the application's queue address: the result.
    void response(const QString &appId, const QString &requestId, QObject *context,
        std::function<void(const Result<Payload> &)> completion) const;
    // Submits, asks for the status until the request is completed (sleeping pollInterval
    // between two questions, failing with queueTimeout once the time limit has passed),
    // then fetches the result.
    void subscribe(const QString &appId, const Payload &input, SubscribeOptions options, QObject *context,
        std::function<void(const Result<Payload> &)> completion) const;

private:
    struct Subscription;
    void poll(const std::shared_ptr<Subscription> &subscription) const;

    std::shared_ptr<const RequestSender> m_sender;
    Sleeper m_sleeper = timerSleeper();
};

} // namespace zentrik::fal
