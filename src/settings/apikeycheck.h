#pragma once

#include <QString>

#include <optional>

namespace zentrik {

// Why a text cannot be an API key: keys are printable ASCII without spaces, and anything
// else (a line break, a tab, a pasted quote mark from a word processor) would either be
// refused by the provider with a puzzling message or break the request's header. Returns
// a short phrase ("a space", "a control character", "a non-ASCII character") for the first
// fault, or std::nullopt for a usable key.
[[nodiscard]] std::optional<QString> apiKeyProblem(const QString &key);

} // namespace zentrik
