#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <chrono>
#include <variant>

#include "model/apierror.h"
#include "net/httprequest.h"
#include "net/httpresponse.h"

namespace zentrik {

// The speech-to-text request: one recording sent to OpenAI's transcription endpoint (or a
// custom provider's, when the user chose one to transcribe) as a two-part multipart form
// (the model name, then the audio), and the transcript read from its answer. The text model
// selected plays no part.
class TranscriptionRequest
{
public:
    static constexpr std::chrono::milliseconds timeout { 60000 };
    static constexpr const char *model = "whisper-1";
    // The audio part is always named and typed this way, whatever the file is called.
    static constexpr const char *audioFileName = "audio.m4a";
    static constexpr const char *audioContentType = "audio/m4a";

    [[nodiscard]] static QUrl endpoint();
    // A fresh UUID in upper-case hexadecimal with hyphens, 36 characters, no prefix.
    [[nodiscard]] static QByteArray newBoundary();
    // The multipart body for the audio, every line ended by CR LF.
    [[nodiscard]] static QByteArray body(
        const QByteArray &boundary, const QByteArray &audio, const QByteArray &modelName = model);
    [[nodiscard]] static HttpRequest build(const QString &key, const QByteArray &boundary, const QByteArray &audio);
    // The same form for another OpenAI-compatible speech server (a custom provider), with no
    // Authorization header when there is no key.
    [[nodiscard]] static HttpRequest build(const QUrl &url, const QString &key, const QByteArray &boundary,
        const QByteArray &audio, const QByteArray &modelName);
    // The model to ask a custom provider for: whisper-1 when it serves that (or lists no
    // speech model), otherwise the first model it lists with "whisper" in its id.
    [[nodiscard]] static QByteArray modelFor(const QStringList &served);
    // Reads the answer in order: transport failure, no body, a body that is not JSON, no
    // string under "text". Writes the diagnostic line of each outcome to the log.
    [[nodiscard]] static std::variant<QString, APIError> read(const HttpResult &result);
};

} // namespace zentrik
