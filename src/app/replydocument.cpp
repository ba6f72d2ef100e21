#include "app/replydocument.h"

#include "render/markdownstrip.h"

namespace zentrik {

ReplyDocument::ReplyDocument(QObject *parent)
    : QObject(parent)
{
    connect(&m_coalescer, &StreamCoalescer::flushed, this, [this](const QString &piece) {
        m_blocks.appendText(piece);
        updateRule();
    });
}

void ReplyDocument::setSource(const QString &source)
{
    if (m_source == source) {
        return;
    }
    const QString previous = std::exchange(m_source, source);
    Q_EMIT sourceChanged();
    if (m_source.startsWith(previous)) {
        m_coalescer.append(m_source.sliced(previous.size()));
        return;
    }
    m_coalescer.discard();
    m_blocks.setText(m_source);
    updateRule();
}

void ReplyDocument::setFrameInterval(int milliseconds)
{
    if (milliseconds == m_coalescer.interval()) {
        return;
    }
    m_coalescer.setInterval(milliseconds);
    Q_EMIT frameIntervalChanged();
}

void ReplyDocument::flush()
{
    m_coalescer.flush();
}

void ReplyDocument::updateRule()
{
    const bool rule = matchesRulePattern(m_blocks.text());
    if (rule != m_showsRule) {
        m_showsRule = rule;
        Q_EMIT showsRuleChanged();
    }
}

} // namespace zentrik
