#include "net/ssereader.h"

namespace zentrik {

SseReader::SseReader(qsizetype maxLineLength)
    : m_lines(maxLineLength)
{ }

SseReader::Status SseReader::feed(QByteArrayView bytes, const Sink &sink)
{
    return m_lines.feed(bytes, [&sink](QByteArrayView line) { return sink(SseLine::classify(line)); });
}

SseReader::Status SseReader::finish(const Sink &sink)
{
    return m_lines.finish([&sink](QByteArrayView line) { return sink(SseLine::classify(line)); });
}

} // namespace zentrik
