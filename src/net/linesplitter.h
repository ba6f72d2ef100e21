#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <functional>

namespace zentrik {

// Cuts a byte stream into lines as the bytes arrive. A line ends at LF, CRLF or a lone
// CR; the terminator is not part of the line. A line is handed over the moment its
// terminator arrives (a CR at the very end of a piece ends its line at once; an LF that
// follows in the next piece is then swallowed). Splitting happens on bytes, so a
// multi-byte UTF-8 character cut between two pieces is reassembled before its line is
// handed over. A line longer than the limit stops the reader instead of growing memory.
class LineSplitter
{
public:
    static constexpr qsizetype defaultMaxLineLength = qsizetype(8) * 1024 * 1024;

    enum class Status {
        Ok, // every complete line was handed over
        Stopped, // the sink asked to stop; the reader accepts no more input
        LineTooLong, // a line exceeded the limit; the reader accepts no more input
    };

    // Receives one line without its terminator; returns false to stop reading.
    using Sink = std::function<bool(QByteArrayView line)>;

    explicit LineSplitter(qsizetype maxLineLength = defaultMaxLineLength);

    Status feed(QByteArrayView bytes, const Sink &sink);
    // End of input: hands over an unterminated last line, if there is one.
    Status finish(const Sink &sink);

    [[nodiscard]] Status status() const { return m_status; }
    [[nodiscard]] qsizetype maxLineLength() const { return m_maxLineLength; }
    // Bytes of the line still waiting for its terminator.
    [[nodiscard]] qsizetype pendingSize() const { return m_pending.size(); }

private:
    QByteArray m_pending;
    qsizetype m_maxLineLength;
    bool m_swallowLf = false;
    Status m_status = Status::Ok;
};

} // namespace zentrik
