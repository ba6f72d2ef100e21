// The fal queue's answers on arbitrary bytes: the status decoder, the submission answer and
// the payload that carries results and error bodies.

#include "fuzztarget.h"

#include "fal/falpayload.h"
#include "fal/falqueuestatus.h"

#include <QJsonDocument>

using zentrik::fal::DecodingError;
using zentrik::fal::Payload;
using zentrik::fal::QueueStatus;
using zentrik::fal::QueueSubmitResult;

ZENTRIK_FUZZ_TARGET(falstatus)
{
    const QByteArray input(reinterpret_cast<const char *>(data), qsizetype(size));

    const auto status = QueueStatus::decode(input);
    if (const auto *decoded = std::get_if<QueueStatus>(&status)) {
        FUZZ_CHECK(decoded->position() >= 0, "a queue position below zero");
    } else {
        FUZZ_CHECK(!std::get<DecodingError>(status).message.isEmpty(), "a decoding error without a message");
    }

    const QJsonDocument document = QJsonDocument::fromJson(input);
    if (document.isObject()) {
        const auto submitted = QueueSubmitResult::fromJson(document.object());
        FUZZ_CHECK(!submitted || !submitted->requestId.isEmpty(), "a submission with an empty request id");
    }

    // A payload written out reads back as itself; the first trip may turn what JSON cannot
    // hold (an infinite number) into null, so stability is checked from the second trip on.
    if (const auto payload = Payload::fromJsonBytes(input)) {
        const auto once = Payload::fromJsonBytes(payload->toJsonBytes());
        FUZZ_CHECK(once.has_value(), "a decoded payload wrote out text that is not JSON");
        const auto twice = Payload::fromJsonBytes(once->toJsonBytes());
        FUZZ_CHECK(twice.has_value() && *twice == *once, "a payload did not read back as itself");
    }
    return 0;
}
