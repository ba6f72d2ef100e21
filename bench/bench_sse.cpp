// Reading a streamed chat reply: a 50 MB synthetic server-sent-events stream (chunks of a
// few tokens each, keep-alive comments between them, as OpenRouter sends them) fed in 16 KiB
// pieces to the line splitter, the SSE reader and the chat chunk decoder, beside a plain
// newline count as the floor. The ratios say what classifying lines and decoding the JSON
// of every chunk cost on top of finding the lines.

#include "chat/chatstreamdecoder.h"
#include "net/linesplitter.h"
#include "net/ssereader.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <benchmark/benchmark.h>

#include <array>
#include <cstring>
#include <random>

namespace {

constexpr qsizetype streamSize = qsizetype(50) * 1000 * 1000;
constexpr qsizetype pieceSize = 16 * 1024;

const QByteArray &syntheticStream()
{
    static const QByteArray stream = [] {
        static const std::array<const char *, 12> tokens = { " the", " reply", " streams", " in", " small", " pieces",
            ",", " caf\u00e9", " \U0001F600", " and", " \u00fcber", "." };
        std::mt19937 random(7);
        QByteArray bytes;
        bytes.reserve(streamSize + 1024);
        int n = 0;
        while (bytes.size() < streamSize) {
            QString text;
            for (int i = 0, count = int(random() % 4) + 1; i < count; ++i) {
                text += QString::fromUtf8(tokens.at(random() % tokens.size()));
            }
            const QJsonObject chunk { { "id", "gen-1732000000-abcdefghijklmnop" }, { "provider", "Together" },
                { "model", "meta-llama/llama-3.1-8b-instruct:free" }, { "object", "chat.completion.chunk" },
                { "created", 1732000000 },
                { "choices",
                    QJsonArray { QJsonObject { { "index", 0 },
                        { "delta", QJsonObject { { "role", "assistant" }, { "content", text } } },
                        { "finish_reason", QJsonValue() }, { "logprobs", QJsonValue() } } } } };
            bytes += "data: " + QJsonDocument(chunk).toJson(QJsonDocument::Compact) + "\n\n";
            if (++n % 50 == 0) {
                bytes += ": OPENROUTER PROCESSING\n\n";
            }
        }
        bytes += "data: [DONE]\n\n";
        return bytes;
    }();
    return stream;
}

template<typename Feed> void run(benchmark::State &state, Feed feed)
{
    const QByteArray &stream = syntheticStream();
    for (auto _ : state) {
        feed(stream);
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * stream.size());
}

void newlineCount(benchmark::State &state)
{
    run(state, [](const QByteArray &stream) {
        qsizetype lines = 0;
        for (qsizetype at = 0; at < stream.size(); at += pieceSize) {
            const char *begin = stream.constData() + at;
            const char *end = begin + std::min(pieceSize, stream.size() - at);
            while ((begin = static_cast<const char *>(std::memchr(begin, '\n', size_t(end - begin)))) != nullptr) {
                ++lines;
                ++begin;
            }
        }
        benchmark::DoNotOptimize(lines);
    });
}

void lineSplitter(benchmark::State &state)
{
    run(state, [](const QByteArray &stream) {
        zentrik::LineSplitter splitter;
        qsizetype lines = 0;
        const auto sink = [&lines](QByteArrayView) {
            ++lines;
            return true;
        };
        for (qsizetype at = 0; at < stream.size(); at += pieceSize) {
            splitter.feed(QByteArrayView(stream).sliced(at, std::min(pieceSize, stream.size() - at)), sink);
        }
        benchmark::DoNotOptimize(lines);
    });
}

void sseReader(benchmark::State &state)
{
    run(state, [](const QByteArray &stream) {
        zentrik::SseReader reader;
        qsizetype data = 0;
        const auto sink = [&data](const zentrik::SseLine &line) {
            data += line.kind == zentrik::SseLine::Kind::Data ? 1 : 0;
            return true;
        };
        for (qsizetype at = 0; at < stream.size(); at += pieceSize) {
            reader.feed(QByteArrayView(stream).sliced(at, std::min(pieceSize, stream.size() - at)), sink);
        }
        benchmark::DoNotOptimize(data);
    });
}

void chatChunkDecoder(benchmark::State &state)
{
    qsizetype characters = 0;
    run(state, [&characters](const QByteArray &stream) {
        zentrik::ChatStreamDecoder decoder;
        characters = 0;
        const auto sink = [&characters](const zentrik::ChatStreamDecoder::Event &event) {
            if (event.kind == zentrik::ChatStreamDecoder::Event::Kind::chunk) {
                characters += event.chunk.text().value_or(QString()).size();
            }
            return true;
        };
        for (qsizetype at = 0; at < stream.size(); at += pieceSize) {
            decoder.feed(QByteArrayView(stream).sliced(at, std::min(pieceSize, stream.size() - at)), sink);
        }
        decoder.finish(sink);
        benchmark::DoNotOptimize(characters);
    });
    state.counters["reply_chars"] = double(characters);
}

} // namespace

BENCHMARK(newlineCount)->Unit(benchmark::kMillisecond);
BENCHMARK(lineSplitter)->Unit(benchmark::kMillisecond);
BENCHMARK(sseReader)->Unit(benchmark::kMillisecond);
BENCHMARK(chatChunkDecoder)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
