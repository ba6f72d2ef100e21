#pragma once

#include <QObject>
#include <QString>
#include <QTimer>
#include <QtQmlIntegration>

namespace zentrik {

// The state behind a copy button: copies its text to the clipboard (through the Markdown
// clean-up unless told to copy verbatim, as code blocks are) and reads "Copied!" with a
// check mark for a moment afterwards.
class ClipboardCopier : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged FINAL)
    Q_PROPERTY(bool cleanUp READ cleanUp WRITE setCleanUp NOTIFY cleanUpChanged FINAL)
    Q_PROPERTY(bool isCopied READ isCopied NOTIFY isCopiedChanged FINAL)
    Q_PROPERTY(QString label READ label NOTIFY isCopiedChanged FINAL)
    Q_PROPERTY(QString symbol READ symbol NOTIFY isCopiedChanged FINAL)
    Q_PROPERTY(int resetDelay READ resetDelay WRITE setResetDelay NOTIFY resetDelayChanged FINAL)

public:
    static constexpr int defaultResetDelay = 2000;

    explicit ClipboardCopier(QObject *parent = nullptr);

    [[nodiscard]] QString text() const { return m_text; }
    void setText(const QString &text);
    [[nodiscard]] bool cleanUp() const { return m_cleanUp; }
    void setCleanUp(bool cleanUp);
    [[nodiscard]] bool isCopied() const { return m_isCopied; }
    [[nodiscard]] QString label() const;
    [[nodiscard]] QString symbol() const;
    [[nodiscard]] int resetDelay() const { return m_resetTimer.interval(); }
    void setResetDelay(int milliseconds);

    // What copy() puts on the clipboard.
    [[nodiscard]] QString clipboardText() const;
    Q_INVOKABLE void copy();

Q_SIGNALS:
    void textChanged();
    void cleanUpChanged();
    void isCopiedChanged();
    void resetDelayChanged();

private:
    void setCopied(bool copied);

    QString m_text;
    bool m_cleanUp = true;
    bool m_isCopied = false;
    QTimer m_resetTimer;
};

} // namespace zentrik
