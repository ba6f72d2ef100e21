#pragma once

#include <QString>

namespace zentrik {

// Turns user text into a copy in which personal information is replaced by bracketed tags,
// before it is sent to a language model: names after greetings and before sign-offs first,
// then e-mail addresses, telephone, social-security and card numbers, postal codes, IP
// addresses, user names, passwords and credentials. Personal information counts as found
// exactly when the copy differs from the text.
class PIIManager
{
public:
    PIIManager() = delete;

    // Pure and thread-safe; an empty text gives an empty text.
    [[nodiscard]] static QString redact(const QString &text);
};

} // namespace zentrik
