#include <QtTest>

#include "net/linesplitter.h"
#include "net/ssereader.h"
#include "support/testregistry.h"

using zentrik::LineSplitter;
using zentrik::SseLine;
using zentrik::SseReader;

namespace {

struct Outcome
{
    QList<QByteArray> lines;
    LineSplitter::Status status = LineSplitter::Status::Ok;
};

Outcome splitInPieces(const QList<QByteArray> &pieces, qsizetype maxLength = LineSplitter::defaultMaxLineLength)
{
    Outcome outcome;
    LineSplitter splitter(maxLength);
    const auto sink = [&outcome](QByteArrayView line) {
        outcome.lines.append(line.toByteArray());
        return true;
    };
    for (const QByteArray &piece : pieces) {
        outcome.status = splitter.feed(piece, sink);
    }
    outcome.status = splitter.finish(sink);
    return outcome;
}

} // namespace

class TestLineSplitter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void splitsAtEveryKindOfEnding_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QList<QByteArray>>("lines");
        QTest::newRow("LF") << QByteArray("a\nbb\n") << QList<QByteArray> { "a", "bb" };
        QTest::newRow("CRLF") << QByteArray("a\r\nbb\r\n") << QList<QByteArray> { "a", "bb" };
        QTest::newRow("CR") << QByteArray("a\rbb\r") << QList<QByteArray> { "a", "bb" };
        QTest::newRow("mixed") << QByteArray("a\r\nb\rc\nd") << QList<QByteArray> { "a", "b", "c", "d" };
        QTest::newRow("blank lines kept") << QByteArray("a\n\n\r\n\rb\n") << QList<QByteArray> { "a", "", "", "", "b" };
        QTest::newRow("LF CR is two endings") << QByteArray("a\n\rb") << QList<QByteArray> { "a", "", "b" };
        QTest::newRow("unterminated last line") << QByteArray("data: x") << QList<QByteArray> { "data: x" };
        QTest::newRow("multi-byte text") << QByteArray("\xc3\xa9t\xc3\xa9\n\xf0\x9f\x98\x80\r\n")
                                         << QList<QByteArray> { "\xc3\xa9t\xc3\xa9", "\xf0\x9f\x98\x80" };
    }

    // Whatever the boundaries between pieces, the lines are the same: a CR at the end of a
    // piece followed by LF at the start of the next is one ending, not two.
    void splitsAtEveryKindOfEnding()
    {
        QFETCH(QByteArray, input);
        QFETCH(QList<QByteArray>, lines);

        QCOMPARE(splitInPieces({ input }).lines, lines);
        for (qsizetype cut = 0; cut <= input.size(); ++cut) {
            QCOMPARE(splitInPieces({ input.left(cut), input.mid(cut) }).lines, lines);
        }
        QList<QByteArray> bytes;
        for (char c : input) {
            bytes.append(QByteArray(1, c));
        }
        QCOMPARE(splitInPieces(bytes).lines, lines);
    }

    void handsOverEachLineBeforeTheNextPieceArrives()
    {
        LineSplitter splitter;
        QList<QByteArray> seen;
        const auto sink = [&seen](QByteArrayView line) {
            seen.append(line.toByteArray());
            return true;
        };
        splitter.feed("first\r", sink);
        QCOMPARE(seen, QList<QByteArray> { "first" });
        splitter.feed("\nsec", sink);
        QCOMPARE(seen, QList<QByteArray> { "first" });
        splitter.feed("ond\n", sink);
        QCOMPARE(seen, (QList<QByteArray> { "first", "second" }));
    }

    void boundsLineLength_data()
    {
        QTest::addColumn<QList<QByteArray>>("pieces");
        QTest::addColumn<int>("status");
        QTest::addColumn<QList<QByteArray>>("lines");
        using S = LineSplitter::Status;
        const QByteArray exactly(16, 'x');
        QTest::newRow("exactly the limit")
            << QList<QByteArray> { exactly + "\n" } << int(S::Ok) << QList<QByteArray> { exactly };
        QTest::newRow("one over, in one piece") << QList<QByteArray> { "ok\n" + exactly + "y\nnext\n" }
                                                << int(S::LineTooLong) << QList<QByteArray> { "ok" };
        QTest::newRow("one over, across pieces")
            << QList<QByteArray> { "ok\n" + exactly, "y", "\n" } << int(S::LineTooLong) << QList<QByteArray> { "ok" };
        QTest::newRow("over without any ending")
            << QList<QByteArray> { exactly, exactly } << int(S::LineTooLong) << QList<QByteArray> {};
    }

    void boundsLineLength()
    {
        QFETCH(QList<QByteArray>, pieces);
        QFETCH(int, status);
        QFETCH(QList<QByteArray>, lines);
        const Outcome outcome = splitInPieces(pieces, 16);
        QCOMPARE(int(outcome.status), status);
        QCOMPARE(outcome.lines, lines);
    }

    void neverBuffersMoreThanTheLimit()
    {
        LineSplitter splitter(1024);
        const auto sink = [](QByteArrayView) { return true; };
        const QByteArray piece(300, 'z');
        LineSplitter::Status status = LineSplitter::Status::Ok;
        for (int i = 0; i < 10 && status == LineSplitter::Status::Ok; ++i) {
            status = splitter.feed(piece, sink);
            QVERIFY(splitter.pendingSize() <= 1024);
        }
        QCOMPARE(status, LineSplitter::Status::LineTooLong);
        // Once failed, the reader stays failed instead of starting over mid-line.
        QCOMPARE(splitter.feed("tail\n", sink), LineSplitter::Status::LineTooLong);
    }

    void stopsWhenTheSinkSaysSo()
    {
        LineSplitter splitter;
        QList<QByteArray> seen;
        const auto sink = [&seen](QByteArrayView line) {
            seen.append(line.toByteArray());
            return line != "stop";
        };
        QCOMPARE(splitter.feed("a\nstop\nb\n", sink), LineSplitter::Status::Stopped);
        QCOMPARE(splitter.feed("c\n", sink), LineSplitter::Status::Stopped);
        QCOMPARE(splitter.finish(sink), LineSplitter::Status::Stopped);
        QCOMPARE(seen, (QList<QByteArray> { "a", "stop" }));
    }

    void classifiesServerSentEventLines_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QByteArray>("value");
        using K = SseLine::Kind;
        QTest::newRow("data") << QByteArray("data: {\"a\":1}") << int(K::Data) << QByteArray("{\"a\":1}");
        QTest::newRow("data keeps further blanks") << QByteArray("data:  x ") << int(K::Data) << QByteArray(" x ");
        QTest::newRow("empty data") << QByteArray("data: ") << int(K::Data) << QByteArray();
        QTest::newRow("end marker") << QByteArray("data: [DONE]") << int(K::Done) << QByteArray("[DONE]");
        QTest::newRow("end marker without blank")
            << QByteArray("data:[DONE]") << int(K::Other) << QByteArray("data:[DONE]");
        QTest::newRow("end marker with trailing blank")
            << QByteArray("data: [DONE] ") << int(K::Data) << QByteArray("[DONE] ");
        QTest::newRow("data without blank") << QByteArray("data:{}") << int(K::Other) << QByteArray("data:{}");
        QTest::newRow("keep-alive comment")
            << QByteArray(": OPENROUTER PROCESSING") << int(K::Comment) << QByteArray(" OPENROUTER PROCESSING");
        QTest::newRow("event") << QByteArray("event: content_block_delta") << int(K::Event)
                               << QByteArray("content_block_delta");
        QTest::newRow("blank") << QByteArray() << int(K::Blank) << QByteArray();
    }

    void classifiesServerSentEventLines()
    {
        QFETCH(QByteArray, line);
        QFETCH(int, kind);
        QFETCH(QByteArray, value);
        const SseLine classified = SseLine::classify(line);
        QCOMPARE(int(classified.kind), kind);
        QCOMPARE(classified.value.toByteArray(), value);
    }

    // The reader on a whole transcript, fed in pieces of every size: the same typed lines.
    void readsATranscriptInAnyPieces()
    {
        const QByteArray transcript = ": OPENROUTER PROCESSING\r\n\r\n"
                                      "data: {\"x\":\"\xe2\x82\xac\"}\r\n\r\n"
                                      "event: ping\ndata:[DONE]\ndata: [DONE]\ndata: after\n";
        const auto read = [&transcript](qsizetype pieceSize) {
            SseReader reader;
            QList<std::pair<int, QByteArray>> seen;
            const auto sink = [&seen](const SseLine &line) {
                seen.append({ int(line.kind), line.value.toByteArray() });
                return line.kind != SseLine::Kind::Done;
            };
            for (qsizetype at = 0; at < transcript.size(); at += pieceSize) {
                reader.feed(QByteArrayView(transcript).sliced(at, std::min(pieceSize, transcript.size() - at)), sink);
            }
            reader.finish(sink);
            return seen;
        };
        using K = SseLine::Kind;
        const QList<std::pair<int, QByteArray>> expected {
            { int(K::Comment), " OPENROUTER PROCESSING" },
            { int(K::Blank), "" },
            { int(K::Data), "{\"x\":\"\xe2\x82\xac\"}" },
            { int(K::Blank), "" },
            { int(K::Event), "ping" },
            { int(K::Other), "data:[DONE]" },
            { int(K::Done), "[DONE]" },
        };
        for (qsizetype size = 1; size <= transcript.size(); ++size) {
            QCOMPARE(read(size), expected);
        }
    }
};

ZENTRIK_TEST(TestLineSplitter)
#include "tst_linesplitter.moc"
