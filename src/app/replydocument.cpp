#include "app/replydocument.h"

#include "render/markdownstrip.h"

namespace zentrik {

ReplyDocument::ReplyDocument(QObject *parent)
    : QObject(parent)
{
    m_frameTimer.setSingleShot(true);
    m_frameTimer.setInterval(defaultFrameInterval);
    connect(&m_frameTimer, &QTimer::timeout, this, [this] {
        if (m_pending) {
            apply();
            m_frameTimer.start();
        }
    });
}

void ReplyDocument::setSource(const QString &source)
{
    if (m_source == source) {
        return;
    }
    m_source = source;
    Q_EMIT sourceChanged();
    if (m_frameTimer.isActive()) {
        m_pending = true;
        return;
    }
    apply();
    m_frameTimer.start();
}

void ReplyDocument::setFrameInterval(int milliseconds)
{
    if (milliseconds == m_frameTimer.interval()) {
        return;
    }
    m_frameTimer.setInterval(qMax(0, milliseconds));
    Q_EMIT frameIntervalChanged();
}

void ReplyDocument::flush()
{
    if (m_pending) {
        apply();
    }
}

void ReplyDocument::apply()
{
    m_pending = false;
    m_blocks.setText(m_source);
    const bool rule = matchesRulePattern(m_source);
    if (rule != m_showsRule) {
        m_showsRule = rule;
        Q_EMIT showsRuleChanged();
    }
}

} // namespace zentrik
