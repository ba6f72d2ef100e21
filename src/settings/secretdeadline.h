#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

using GCancellable = struct _GCancellable;

namespace zentrik {

// Cancels the libsecret calls of one public operation once its time is up, so that an
// unreachable bus or a service that waits on a prompt never hangs the caller. One object
// covers every call of the operation: a set that first removes the old item still gives
// up at the one deadline.
class SecretDeadline
{
public:
    using Clock = std::chrono::steady_clock;

    explicit SecretDeadline(Clock::time_point at);
    ~SecretDeadline();
    SecretDeadline(const SecretDeadline &) = delete;
    SecretDeadline &operator=(const SecretDeadline &) = delete;

    [[nodiscard]] GCancellable *cancellable() const { return m_cancellable; }
    [[nodiscard]] bool expired();
    // Gives up now, as if the time were up; safe from any thread.
    void expireNow();

private:
    GCancellable *m_cancellable;
    std::mutex m_mutex;
    std::condition_variable m_finished;
    bool m_done = false;
    bool m_expired = false;
    std::thread m_watcher;
};

} // namespace zentrik
