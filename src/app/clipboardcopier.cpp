#include "app/clipboardcopier.h"

#include "render/markdownstrip.h"

#include <QClipboard>
#include <QGuiApplication>

namespace zentrik {

ClipboardCopier::ClipboardCopier(QObject *parent)
    : QObject(parent)
{
    m_resetTimer.setSingleShot(true);
    m_resetTimer.setInterval(defaultResetDelay);
    connect(&m_resetTimer, &QTimer::timeout, this, [this] { setCopied(false); });
}

void ClipboardCopier::setText(const QString &text)
{
    if (m_text == text) {
        return;
    }
    m_text = text;
    Q_EMIT textChanged();
}

void ClipboardCopier::setCleanUp(bool cleanUp)
{
    if (m_cleanUp == cleanUp) {
        return;
    }
    m_cleanUp = cleanUp;
    Q_EMIT cleanUpChanged();
}

QString ClipboardCopier::label() const
{
    return m_isCopied ? tr("Copied!") : tr("Copy to Clipboard");
}

QString ClipboardCopier::symbol() const
{
    return m_isCopied ? QStringLiteral("checkmark") : QStringLiteral("doc.on.doc");
}

void ClipboardCopier::setResetDelay(int milliseconds)
{
    if (milliseconds == m_resetTimer.interval()) {
        return;
    }
    m_resetTimer.setInterval(qMax(0, milliseconds));
    Q_EMIT resetDelayChanged();
}

QString ClipboardCopier::clipboardText() const
{
    return m_cleanUp ? stripMarkdown(m_text) : m_text;
}

void ClipboardCopier::copy()
{
    if (QClipboard *clipboard = QGuiApplication::clipboard()) {
        clipboard->setText(clipboardText());
    }
    setCopied(true);
    // A second copy while the notice is up keeps it up for the whole delay again.
    m_resetTimer.start();
}

void ClipboardCopier::setCopied(bool copied)
{
    if (m_isCopied == copied) {
        return;
    }
    m_isCopied = copied;
    Q_EMIT isCopiedChanged();
}

} // namespace zentrik
