// The chat chunk decoder on arbitrary bytes: streamed chat completions with any lines,
// JSON and cuts.

#include "fuzztarget.h"
#include "streamcheck.h"

#include "chat/chatstreamdecoder.h"

using zentrik::ChatCompletionChunk;
using zentrik::ChatStreamDecoder;

namespace {

// Field by field: GCC cannot default == for the log probabilities, whose tokens hold lists
// of tokens, so neither a choice nor a chunk has a usable == there. Log probabilities are
// compared by their presence and size.
bool sameChunk(const ChatCompletionChunk &a, const ChatCompletionChunk &b)
{
    if (a.id != b.id || a.created != b.created || a.model != b.model || a.object != b.object
        || a.serviceTier != b.serviceTier || a.systemFingerprint != b.systemFingerprint || a.usage != b.usage
        || a.choices.size() != b.choices.size()) {
        return false;
    }
    for (qsizetype i = 0; i < a.choices.size(); ++i) {
        const auto &x = a.choices.at(i);
        const auto &y = b.choices.at(i);
        const auto tokens = [](const auto &logprobs) {
            return logprobs && logprobs->content ? logprobs->content->size() : qsizetype(-1);
        };
        if (x.index != y.index || !(x.delta == y.delta) || x.finishReason != y.finishReason
            || x.logprobs.has_value() != y.logprobs.has_value() || tokens(x.logprobs) != tokens(y.logprobs)) {
            return false;
        }
    }
    return true;
}

} // namespace

ZENTRIK_FUZZ_TARGET(chatchunk)
{
    zentrik::fuzz::checkStream<ChatStreamDecoder>(
        data, size, [](const ChatStreamDecoder::Event &a, const ChatStreamDecoder::Event &b) {
            return a.kind == b.kind && sameChunk(a.chunk, b.chunk) && a.error == b.error;
        });
    return 0;
}
