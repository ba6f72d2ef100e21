#include <QtTest>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "chat/anthropicstreamdecoder.h"
#include "chat/chatstreamdecoder.h"
#include "support/replies.h"
#include "support/testregistry.h"

using namespace zentrik;

using test::anthropicEvent;
using test::chunkLine;
using test::textDelta;

namespace {

struct Decoded
{
    QString text;
    int pieces = 0;
    bool done = false;
    QString failure;
    int endings = 0;
};

// Feeds the stream in pieces of the given size and records every event.
template<typename Decoder, typename TextOf> Decoded decode(const QByteArray &stream, qsizetype pieceSize, TextOf textOf)
{
    using Kind = typename Decoder::Event::Kind;
    Decoded decoded;
    Decoder decoder;
    const auto sink = [&decoded, &textOf](const typename Decoder::Event &event) {
        if (event.kind == Kind::done || event.kind == Kind::failed) {
            decoded.done = event.kind == Kind::done;
            decoded.failure = event.kind == Kind::failed ? event.error->description() : QString();
            ++decoded.endings;
        } else if (const QString text = textOf(event); !text.isEmpty()) {
            decoded.text += text;
            ++decoded.pieces;
        }
        return true;
    };
    for (qsizetype at = 0; at < stream.size(); at += pieceSize) {
        decoder.feed(QByteArrayView(stream).sliced(at, std::min(pieceSize, stream.size() - at)), sink);
    }
    decoder.finish(sink);
    return decoded;
}

Decoded decodeChat(const QByteArray &stream, qsizetype pieceSize)
{
    return decode<ChatStreamDecoder>(stream, pieceSize, [](const ChatStreamDecoder::Event &event) {
        return event.kind == ChatStreamDecoder::Event::Kind::chunk ? event.chunk.text().value_or(QString()) : QString();
    });
}

Decoded decodeAnthropic(const QByteArray &stream, qsizetype pieceSize)
{
    return decode<AnthropicStreamDecoder>(stream, pieceSize, [](const AnthropicStreamDecoder::Event &event) {
        return event.kind == AnthropicStreamDecoder::Event::Kind::text ? event.text : QString();
    });
}

const QString incomplete = QStringLiteral("The connection closed before the reply was complete.");

} // namespace

// Decoding streamed replies from bytes, whatever the piece boundaries.
class TestChatStreamDecoder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decodesChatStreams_data()
    {
        QTest::addColumn<QByteArray>("stream");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("pieces");
        QTest::addColumn<bool>("done");
        QTest::addColumn<QString>("failure");

        const QByteArray done = "data: [DONE]\n\n";
        QTest::newRow("end marker first") << done + chunkLine("never") << QString() << 0 << true << QString();
        QTest::newRow("plain") << chunkLine("Hel") + chunkLine("lo", "stop") + done << "Hello" << 2 << true
                               << QString();
        QTest::newRow("multi-byte text") << chunkLine("h\u00e9 \U0001F600") + chunkLine("\u20ac") + done
                                         << QString::fromUtf8("h\u00e9 \U0001F600\u20ac") << 2 << true << QString();
        QTest::newRow("CRLF") << QByteArray(chunkLine("a") + chunkLine("b") + done).replace("\n", "\r\n") << "ab" << 2
                              << true << QString();
        QTest::newRow("keep-alive comments")
            << ": OPENROUTER PROCESSING\n\n" + chunkLine("a") + ": OPENROUTER PROCESSING\n\n" + chunkLine("b") + done
            << "ab" << 2 << true << QString();
        QTest::newRow("end marker without blank is skipped")
            << chunkLine("a") + "data:[DONE]\n\n" + chunkLine("b") + done << "ab" << 2 << true << QString();
        QTest::newRow("other fields skipped")
            << "id: 1\nevent: message\nretry: 10\n" + chunkLine("a") + done << "a" << 1 << true << QString();
        QTest::newRow("lines after the end are not read") << chunkLine("a") + done + "data: {oops\n\n"
                                                          << "a" << 1 << true << QString();
        QTest::newRow("error object after two pieces") << chunkLine("one ") + chunkLine("two")
                + R"(data: {"error":{"message":"Rate limit exceeded","code":429}})"
                  "\n\n"
                                                       << "one two" << 2 << false << "Rate limit exceeded";
        QTest::newRow("error without message") << chunkLine("a") + "data: {\"error\":{}}\n\n"
                                               << "a" << 1 << false << "The service reported an error.";
        QTest::newRow("not JSON") << chunkLine("a") + "data: {oops\n\n" + chunkLine("b") << "a" << 1 << false
                                  << "The reply stream held a chunk that could not be read: unterminated object";
        QTest::newRow("not a chunk") << chunkLine("a") + "data: {\"choices\":7}\n\n"
                                     << "a" << 1 << false
                                     << "The reply stream held a chunk that could not be read: unexpected fields";
        QTest::newRow("closed after a finish reason")
            << chunkLine("a") + chunkLine("", "stop") << "a" << 1 << true << QString();
        QTest::newRow("closed without finish reason")
            << chunkLine("a") + chunkLine("b") << "ab" << 2 << false << incomplete;
        QTest::newRow("nothing at all") << QByteArray() << QString() << 0 << false << incomplete;
        QTest::newRow("unterminated end marker") << chunkLine("a") + "data: [DONE]"
                                                 << "a" << 1 << true << QString();
    }

    void decodesChatStreams()
    {
        QFETCH(QByteArray, stream);
        QFETCH(QString, text);
        QFETCH(int, pieces);
        QFETCH(bool, done);
        QFETCH(QString, failure);
        // Whole, in pieces of every small size (splitting multi-byte characters and the
        // "data: " prefix), and byte by byte.
        for (qsizetype size :
            { stream.size() + 1, qsizetype(1), qsizetype(2), qsizetype(3), qsizetype(5), qsizetype(7) }) {
            const Decoded decoded = decodeChat(stream, std::max<qsizetype>(size, 1));
            QCOMPARE(decoded.text, text);
            QCOMPARE(decoded.pieces, pieces);
            QCOMPARE(decoded.done, done);
            QCOMPARE(decoded.failure, failure);
            QCOMPARE(decoded.endings, 1);
        }
    }

    void oversizedLineEndsTheStream()
    {
        QByteArray stream = chunkLine("kept");
        stream += "data: " + QByteArray(LineSplitter::defaultMaxLineLength, 'x') + "\n\n" + chunkLine("lost");
        const Decoded decoded = decodeChat(stream, 64 * 1024);
        QCOMPARE(decoded.text, "kept");
        QCOMPARE(decoded.failure, "A line of the reply is longer than 8 MiB.");
        QCOMPARE(decoded.endings, 1);
    }

    void decodesAnthropicStreams_data()
    {
        QTest::addColumn<QByteArray>("stream");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("done");
        QTest::addColumn<QString>("failure");

        const QByteArray start = anthropicEvent("message_start", { { "message", QJsonObject { { "id", "msg_1" } } } })
            + anthropicEvent("content_block_start",
                { { "index", 0 }, { "content_block", QJsonObject { { "type", "text" }, { "text", "" } } } });
        const QByteArray stop = anthropicEvent("content_block_stop", { { "index", 0 } })
            + anthropicEvent("message_delta", { { "delta", QJsonObject { { "stop_reason", "end_turn" } } } })
            + anthropicEvent("message_stop", {});
        const QByteArray ping = anthropicEvent("ping", {});

        QTest::newRow("whole message") << start + ping + textDelta("Hello") + ping + textDelta(", w\u00f6rld") + stop
                                       << QString::fromUtf8("Hello, w\u00f6rld") << true << QString();
        QTest::newRow("other deltas skipped") << start
                + anthropicEvent("content_block_delta",
                    { { "delta", QJsonObject { { "type", "input_json_delta" }, { "partial_json", "{" } } } })
                + textDelta("a")
                + stop << "a" << true << QString();
        QTest::newRow("error event") << start + textDelta("a")
                + anthropicEvent("error",
                    { { "error", QJsonObject { { "type", "overloaded_error" }, { "message", "Overloaded" } } } })
                                     << "a" << false << "Overloaded";
        QTest::newRow("closed after the stop reason") << start + textDelta("a")
                + anthropicEvent("message_delta", { { "delta", QJsonObject { { "stop_reason", "max_tokens" } } } })
                                                      << "a" << true << QString();
        QTest::newRow("closed early") << start + textDelta("a") << "a" << false << incomplete;
        QTest::newRow("unreadable event")
            << start + "data: [1,2]\n\n"
            << QString() << false << "The reply stream held an event that could not be read: not a JSON object";
    }

    void decodesAnthropicStreams()
    {
        QFETCH(QByteArray, stream);
        QFETCH(QString, text);
        QFETCH(bool, done);
        QFETCH(QString, failure);
        for (qsizetype size : { stream.size() + 1, qsizetype(1), qsizetype(3) }) {
            const Decoded decoded = decodeAnthropic(stream, size);
            QCOMPARE(decoded.text, text);
            QCOMPARE(decoded.done, done);
            QCOMPARE(decoded.failure, failure);
            QCOMPARE(decoded.endings, 1);
        }
    }
};

ZENTRIK_TEST(TestChatStreamDecoder)
#include "tst_chatstreamdecoder.moc"
