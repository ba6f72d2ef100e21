#pragma once

#include <QString>

#include <variant>

namespace zentrik::cli {

// The transcript of an audio file through OpenAI, with the key from the secret store or
// OPENAI_API_KEY. On failure the one-line message is already on stderr and the exit code
// is returned instead.
[[nodiscard]] std::variant<QString, int> transcribeFile(const QString &path);

} // namespace zentrik::cli
