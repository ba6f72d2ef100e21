#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

namespace zentrik {

// Collects the pieces of a streamed reply and hands them on at most once per frame, so a
// fast stream costs one view update per frame instead of one per piece.
class StreamCoalescer : public QObject
{
    Q_OBJECT

public:
    explicit StreamCoalescer(QObject *parent = nullptr);

    void append(const QString &piece);
    // Hands on whatever is pending now (at the end of a stream).
    void flush();
    void discard();

    static constexpr int frameMs = 16;

Q_SIGNALS:
    void flushed(const QString &text);

private:
    QString m_pending;
    QTimer m_timer;
};

} // namespace zentrik
