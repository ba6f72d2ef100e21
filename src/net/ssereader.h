#pragma once

#include <QByteArrayView>

#include <functional>

#include "net/linesplitter.h"
#include "net/sseline.h"

namespace zentrik {

// Reads a server-sent-events byte stream piece by piece and hands over each line,
// classified, as soon as it is complete. Works on any byte buffer, so the same reader
// serves the network path, recorded transcripts and fuzzing.
class SseReader
{
public:
    using Status = LineSplitter::Status;
    // Returns false to stop reading.
    using Sink = std::function<bool(const SseLine &line)>;

    explicit SseReader(qsizetype maxLineLength = LineSplitter::defaultMaxLineLength);

    Status feed(QByteArrayView bytes, const Sink &sink);
    Status finish(const Sink &sink);

    [[nodiscard]] Status status() const { return m_lines.status(); }
    [[nodiscard]] qsizetype maxLineLength() const { return m_lines.maxLineLength(); }

private:
    LineSplitter m_lines;
};

} // namespace zentrik
