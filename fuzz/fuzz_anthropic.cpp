// The Anthropic event decoder on arbitrary bytes: streamed messages with any events, JSON
// and cuts.

#include "fuzztarget.h"
#include "streamcheck.h"

#include "chat/anthropicstreamdecoder.h"

using zentrik::AnthropicStreamDecoder;

ZENTRIK_FUZZ_TARGET(anthropic)
{
    zentrik::fuzz::checkStream<AnthropicStreamDecoder>(
        data, size, [](const AnthropicStreamDecoder::Event &a, const AnthropicStreamDecoder::Event &b) {
            return a.kind == b.kind && a.text == b.text && a.error == b.error;
        });
    return 0;
}
