#pragma once

#include <QList>
#include <QString>

namespace zentrik {

// A ready-made request of a conversational tool: the chip's label and the text it puts
// before (Ask Me Anything) or above (the developer tools) what the user types.
struct ConversationSuggestion
{
    QString key; // stable name for the command line; the label for tools without keys
    QString label;
    QString prompt;
};

// Ask Me Anything, whose requests double as the Writing Assistant; each prefix ends with
// a colon and one blank, so it is joined to the user's text directly.
[[nodiscard]] const QList<ConversationSuggestion> &askMeAnythingSuggestions();
// The Code Debugger's five problem kinds, keyed syntaxError, logicError, runtimeError,
// performanceIssue, securityVulnerability.
[[nodiscard]] const QList<ConversationSuggestion> &debuggerSuggestions();
// The Sample Data Generator's output formats.
[[nodiscard]] const QList<ConversationSuggestion> &sampleDataFormats();

// The entry whose key or label matches (keys first), or nullptr.
[[nodiscard]] const ConversationSuggestion *findSuggestion(
    const QList<ConversationSuggestion> &table, const QString &keyOrLabel);

} // namespace zentrik
