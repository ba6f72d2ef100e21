#pragma once

#include "fuzztarget.h"
#include "pieces.h"

#include <QByteArrayView>
#include <QList>

// What every stream decoder promises whatever the bytes: the events do not depend on how
// the bytes were cut, and a finished stream has ended with exactly one terminal event (done
// or failed) after which nothing else comes, so a caller's completion runs exactly once.
namespace zentrik::fuzz {

template<typename Decoder> QList<typename Decoder::Event> decodeStream(const QList<QByteArrayView> &pieces)
{
    QList<typename Decoder::Event> events;
    Decoder decoder;
    const auto sink = [&events](const typename Decoder::Event &event) {
        events.append(event);
        return true;
    };
    for (const QByteArrayView piece : pieces) {
        decoder.feed(piece, sink);
    }
    decoder.finish(sink);
    FUZZ_CHECK(decoder.hasEnded(), "the decoder had not ended after finish()");
    // Input after the end is ignored.
    decoder.feed("data: [DONE]\n", sink);
    decoder.finish(sink);
    return events;
}

template<typename Decoder, typename Same> void checkStream(const uint8_t *data, size_t size, Same same)
{
    using Kind = typename Decoder::Event::Kind;
    const QByteArrayView input(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto whole = decodeStream<Decoder>({ input });
    Pieces cutter(data, size);
    const auto cut = decodeStream<Decoder>(cutter.bytes());

    FUZZ_CHECK(whole.size() == cut.size(), "cutting the input changed the number of events");
    for (qsizetype i = 0; i < whole.size(); ++i) {
        FUZZ_CHECK(same(whole.at(i), cut.at(i)), "cutting the input changed an event");
    }
    FUZZ_CHECK(!whole.isEmpty(), "a finished stream reported no end");
    for (qsizetype i = 0; i < whole.size(); ++i) {
        const Kind kind = whole.at(i).kind;
        const bool terminal = kind == Kind::done || kind == Kind::failed;
        FUZZ_CHECK(kind != Kind::skipped, "a skipped line reached the sink");
        FUZZ_CHECK(terminal == (i == whole.size() - 1), "the terminal event is not the one last event");
        FUZZ_CHECK(whole.at(i).error.has_value() == (kind == Kind::failed), "an error without a failure");
        if (kind == Kind::failed) {
            FUZZ_CHECK(!whole.at(i).error->description().isEmpty(), "a failure without a description");
        }
    }
}

} // namespace zentrik::fuzz
