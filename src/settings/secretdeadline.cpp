#include "settings/secretdeadline.h"

#include <gio/gio.h>

namespace zentrik {

SecretDeadline::SecretDeadline(Clock::time_point at)
    : m_cancellable(g_cancellable_new())
    , m_watcher([this, at] {
        std::unique_lock guard(m_mutex);
        if (!m_finished.wait_until(guard, at, [this] { return m_done || m_expired; })) {
            m_expired = true;
        }
        if (m_expired) {
            g_cancellable_cancel(m_cancellable);
        }
    })
{ }

SecretDeadline::~SecretDeadline()
{
    {
        std::lock_guard guard(m_mutex);
        m_done = true;
    }
    m_finished.notify_all();
    m_watcher.join();
    g_object_unref(m_cancellable);
}

bool SecretDeadline::expired()
{
    std::lock_guard guard(m_mutex);
    return m_expired;
}

void SecretDeadline::expireNow()
{
    {
        std::lock_guard guard(m_mutex);
        m_expired = true;
    }
    m_finished.notify_all();
}

} // namespace zentrik
