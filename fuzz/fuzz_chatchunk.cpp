// The chat chunk decoder on arbitrary bytes: streamed chat completions with any lines,
// JSON and cuts.

#include "fuzztarget.h"
#include "streamcheck.h"

#include "model/chatstreamdecoder.h"

using zentrik::ChatStreamDecoder;

ZENTRIK_FUZZ_TARGET(chatchunk)
{
    zentrik::fuzz::checkStream<ChatStreamDecoder>(
        data, size, [](const ChatStreamDecoder::Event &a, const ChatStreamDecoder::Event &b) {
            return a.kind == b.kind && a.chunk == b.chunk && a.error == b.error;
        });
    return 0;
}
