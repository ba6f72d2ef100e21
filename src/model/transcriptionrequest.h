#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <chrono>
#include <variant>

#include "model/apierror.h"
#include "net/httprequest.h"
#include "net/httpresponse.h"

namespace zentrik {

// The speech-to-text request: one recording sent to OpenAI's transcription endpoint as a
// two-part multipart form (the model name, then the audio), and the transcript read from
// its answer. Always OpenAI and whisper-1, whatever text model is selected.
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
    [[nodiscard]] static QByteArray body(const QByteArray &boundary, const QByteArray &audio);
    [[nodiscard]] static HttpRequest build(const QString &key, const QByteArray &boundary, const QByteArray &audio);
    // Reads the answer in order: transport failure, no body, a body that is not JSON, no
    // string under "text". Writes the diagnostic line of each outcome to the log.
    [[nodiscard]] static std::variant<QString, APIError> read(const HttpResult &result);
};

} // namespace zentrik
