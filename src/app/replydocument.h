#pragma once

#include "render/markdownmodel.h"
#include "tools/streamcoalescer.h"

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace zentrik {

// One reply on screen: its Markdown source and the blocks a view draws. A streamed reply
// may grow its source many times per frame; what it grows by reaches the blocks through a
// StreamCoalescer, at most once per frame interval, so the window stays responsive however
// fast the pieces arrive. A source that does not continue the one before (another reply)
// replaces the blocks at once.
class ReplyDocument : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString source READ source WRITE setSource NOTIFY sourceChanged FINAL)
    Q_PROPERTY(zentrik::MarkdownModel *blocks READ blocks CONSTANT FINAL)
    // The reply matches the horizontal-rule pattern: the view draws a divider by it.
    Q_PROPERTY(bool showsRule READ showsRule NOTIFY showsRuleChanged FINAL)
    Q_PROPERTY(int frameInterval READ frameInterval WRITE setFrameInterval NOTIFY frameIntervalChanged FINAL)

public:
    explicit ReplyDocument(QObject *parent = nullptr);

    [[nodiscard]] QString source() const { return m_source; }
    void setSource(const QString &source);
    [[nodiscard]] MarkdownModel *blocks() { return &m_blocks; }
    [[nodiscard]] bool showsRule() const { return m_showsRule; }
    [[nodiscard]] int frameInterval() const { return m_coalescer.interval(); }
    void setFrameInterval(int milliseconds);

    // Brings the blocks up to date with the source now.
    Q_INVOKABLE void flush();

Q_SIGNALS:
    void sourceChanged();
    void showsRuleChanged();
    void frameIntervalChanged();

private:
    void updateRule();

    QString m_source;
    MarkdownModel m_blocks;
    bool m_showsRule = false;
    StreamCoalescer m_coalescer;
};

} // namespace zentrik
