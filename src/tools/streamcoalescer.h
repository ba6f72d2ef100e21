#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

namespace zentrik {

// Collects the pieces of a streamed reply and hands them on at most once per frame: the
// first piece after a quiet frame at once, the pieces that follow it within the frame
// together when the frame ends. A fast stream then costs one view update per frame
// instead of one per piece, and a slow one shows each piece without delay.
class StreamCoalescer : public QObject
{
    Q_OBJECT

public:
    static constexpr int frameMs = 16;

    explicit StreamCoalescer(QObject *parent = nullptr);

    void append(const QString &piece);
    // Hands on whatever is pending now (at the end of a stream).
    void flush();
    // Drops what is pending (a new reply replaces the old one).
    void discard();

    [[nodiscard]] int interval() const { return m_frame.interval(); }
    void setInterval(int milliseconds);

Q_SIGNALS:
    void flushed(const QString &text);

private:
    void handOn();

    QString m_pending;
    QTimer m_frame;
};

} // namespace zentrik
