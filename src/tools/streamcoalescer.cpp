#include "tools/streamcoalescer.h"

namespace zentrik {

StreamCoalescer::StreamCoalescer(QObject *parent)
    : QObject(parent)
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(frameMs);
    connect(&m_timer, &QTimer::timeout, this, &StreamCoalescer::flush);
}

void StreamCoalescer::append(const QString &piece)
{
    if (piece.isEmpty()) {
        return;
    }
    m_pending += piece;
    if (!m_timer.isActive()) {
        m_timer.start();
    }
}

void StreamCoalescer::flush()
{
    m_timer.stop();
    if (m_pending.isEmpty()) {
        return;
    }
    const QString text = std::exchange(m_pending, QString());
    Q_EMIT flushed(text);
}

void StreamCoalescer::discard()
{
    m_timer.stop();
    m_pending.clear();
}

} // namespace zentrik
