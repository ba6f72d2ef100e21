#include "tools/streamcoalescer.h"

namespace zentrik {

StreamCoalescer::StreamCoalescer(QObject *parent)
    : QObject(parent)
{
    m_frame.setSingleShot(true);
    m_frame.setInterval(frameMs);
    // A frame that ends with pieces waiting hands them on and starts the next frame; a quiet
    // one lets the next piece through at once.
    connect(&m_frame, &QTimer::timeout, this, [this] {
        if (!m_pending.isEmpty()) {
            handOn();
        }
    });
}

void StreamCoalescer::append(const QString &piece)
{
    if (piece.isEmpty()) {
        return;
    }
    m_pending += piece;
    if (!m_frame.isActive()) {
        handOn();
    }
}

void StreamCoalescer::flush()
{
    if (!m_pending.isEmpty()) {
        handOn();
    }
}

void StreamCoalescer::discard()
{
    m_frame.stop();
    m_pending.clear();
}

void StreamCoalescer::setInterval(int milliseconds)
{
    m_frame.setInterval(qMax(0, milliseconds));
}

void StreamCoalescer::handOn()
{
    m_frame.start();
    const QString text = std::exchange(m_pending, QString());
    Q_EMIT flushed(text);
}

} // namespace zentrik
