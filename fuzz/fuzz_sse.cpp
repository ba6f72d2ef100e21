// The server-sent-events reader on arbitrary bytes: the lines it hands over must not depend
// on how the bytes were cut into pieces, must be exactly the lines of the input, and a line
// over the limit or a sink that says stop must end reading cleanly.

#include "fuzztarget.h"
#include "pieces.h"

#include "net/linesplitter.h"
#include "net/ssereader.h"

#include <QByteArray>
#include <QList>

#include <utility>

namespace {

using zentrik::LineSplitter;
using zentrik::SseLine;
using zentrik::SseReader;

// The lines of a whole input as a plain loop sees them: LF, CRLF and a lone CR end a line,
// and a last line without an ending still counts when it is not empty.
QList<QByteArray> expectedLines(QByteArrayView input)
{
    QList<QByteArray> lines;
    QByteArray line;
    for (qsizetype i = 0; i < input.size(); ++i) {
        const char c = input[i];
        if (c == '\r' || c == '\n') {
            lines.append(std::exchange(line, {}));
            if (c == '\r' && i + 1 < input.size() && input[i + 1] == '\n') {
                ++i;
            }
        } else {
            line.append(c);
        }
    }
    if (!line.isEmpty()) {
        lines.append(line);
    }
    return lines;
}

struct Classified
{
    SseLine::Kind kind;
    QByteArray value;
    friend bool operator==(const Classified &, const Classified &) = default;
};

struct Reading
{
    QList<Classified> lines;
    SseReader::Status status = SseReader::Status::Ok;
};

Reading readSse(const QList<QByteArrayView> &pieces)
{
    Reading reading;
    SseReader reader;
    const auto sink = [&reading](const SseLine &line) {
        reading.lines.append({ line.kind, line.value.toByteArray() });
        return true;
    };
    for (const QByteArrayView piece : pieces) {
        reader.feed(piece, sink);
    }
    reading.status = reader.finish(sink);
    return reading;
}

// Splits with a limit and a sink that stops after `stopAfter` lines (never when negative).
std::pair<QList<QByteArray>, LineSplitter::Status> split(
    const QList<QByteArrayView> &pieces, qsizetype limit, qsizetype stopAfter)
{
    QList<QByteArray> lines;
    LineSplitter splitter(limit);
    const auto sink = [&](QByteArrayView line) {
        lines.append(line.toByteArray());
        return stopAfter < 0 || lines.size() < stopAfter;
    };
    for (const QByteArrayView piece : pieces) {
        splitter.feed(piece, sink);
    }
    return { lines, splitter.finish(sink) };
}

} // namespace

ZENTRIK_FUZZ_TARGET(sse)
{
    const QByteArrayView input(reinterpret_cast<const char *>(data), qsizetype(size));
    zentrik::fuzz::Pieces cutter(data, size);
    const QList<QByteArrayView> pieces = cutter.bytes();

    const Reading whole = readSse({ input });
    const Reading cut = readSse(pieces);
    FUZZ_CHECK(whole.status == SseReader::Status::Ok, "a reader with the default limit reads a small input whole");
    FUZZ_CHECK(cut.lines == whole.lines, "the lines depend on where the input was cut");

    const QList<QByteArray> expected = expectedLines(input);
    const auto [lines, status] = split(pieces, LineSplitter::defaultMaxLineLength, -1);
    FUZZ_CHECK(status == LineSplitter::Status::Ok, "the splitter stopped on its own");
    FUZZ_CHECK(lines == expected, "the splitter's lines differ from the input's lines");
    FUZZ_CHECK(lines.size() == whole.lines.size(), "the reader handed over a different number of lines");

    // A small limit: every line before the first one over it is handed over, then reading
    // ends with LineTooLong and nothing more comes out.
    const qsizetype limit = qsizetype(cutter.next() % 64);
    qsizetype firstLong = 0;
    while (firstLong < expected.size() && expected.at(firstLong).size() <= limit) {
        ++firstLong;
    }
    const auto [limited, limitedStatus] = split(pieces, limit, -1);
    FUZZ_CHECK((limitedStatus == LineSplitter::Status::LineTooLong) == (firstLong < expected.size()),
        "LineTooLong is reported exactly when a line is over the limit");
    FUZZ_CHECK(limited == expected.first(firstLong), "the lines before a too-long one differ");

    // A sink that stops: exactly that many lines, and the splitter stays stopped.
    if (!expected.isEmpty()) {
        const qsizetype stopAfter = 1 + qsizetype(cutter.next() % uint64_t(expected.size()));
        const auto [stopped, stoppedStatus] = split(pieces, LineSplitter::defaultMaxLineLength, stopAfter);
        FUZZ_CHECK(stoppedStatus == LineSplitter::Status::Stopped, "a sink that said stop left the splitter going");
        FUZZ_CHECK(stopped == expected.first(stopAfter), "lines were handed over after the sink said stop");
    }
    return 0;
}
