#include "tools/conversationsuggestions.h"

namespace zentrik {

namespace {
ConversationSuggestion labelled(const char *label, const char *prompt)
{
    return { QString::fromUtf8(label), QString::fromUtf8(label), QString::fromUtf8(prompt) };
}
} // namespace

const QList<ConversationSuggestion> &askMeAnythingSuggestions()
{
    static const QList<ConversationSuggestion> table {
        labelled("Ask Me Anything", "Please provide a detailed and informative answer to the following question: "),
        labelled("Summarize your text",
            "Please summarize the following text in a concise manner, highlighting the key points: "),
        labelled("Grammar Checker", "Please check the following text for grammatical errors and provide corrections: "),
        labelled("Resume Reviewer",
            "Please review the following resume content and provide feedback on how to improve it: "),
        labelled("Improve Essay",
            "Please review the following essay and suggest improvements in terms of structure, "
            "content, and style: "),
        labelled("Writing Assistant",
            "I need assistance with the following writing task. Please provide guidance and suggestions: "),
        labelled(
            "Explain in simple words", "Please explain the following concept in simple, easy-to-understand terms: "),
        labelled("Passive to Active", "Please convert the following passive voice sentences to active voice: "),
        labelled("Translate to English", "Please translate the following text to English: "),
    };
    return table;
}

const QList<ConversationSuggestion> &debuggerSuggestions()
{
    static const QList<ConversationSuggestion> table {
        { QStringLiteral("syntaxError"), QStringLiteral("Syntax Error"),
            QStringLiteral("I'm encountering a syntax error in my code. Can you help me identify and fix it?") },
        { QStringLiteral("logicError"), QStringLiteral("Logic Error"),
            QStringLiteral("There seems to be a logic error in my program. Can you assist in finding the issue?") },
        { QStringLiteral("runtimeError"), QStringLiteral("Runtime Error"),
            QStringLiteral("I'm getting a runtime error when executing my code. How can I resolve this?") },
        { QStringLiteral("performanceIssue"), QStringLiteral("Performance Issue"),
            QStringLiteral("My code is running slowly. Can you suggest ways to optimize its performance?") },
        { QStringLiteral("securityVulnerability"), QStringLiteral("Security Vulnerability"),
            QStringLiteral("I'm concerned about potential security vulnerabilities in my code. Can you review and "
                           "provide recommendations?") },
    };
    return table;
}

const QList<ConversationSuggestion> &sampleDataFormats()
{
    static const QList<ConversationSuggestion> table {
        labelled("JSON", "Generate sample JSON data using the following information:"),
        labelled("CSV", "Create sample data in CSV format with the following information:"),
        labelled("SQL", "Generate SQL INSERT statements using the following information:"),
        labelled("XML", "Create an XML structure using the following information:"),
        labelled("YAML", "Generate YAML data using the following information:"),
        labelled("HTML", "Create an HTML table using the following information:"),
        labelled("Markdown", "Generate a Markdown table using the following information:"),
    };
    return table;
}

const ConversationSuggestion *findSuggestion(const QList<ConversationSuggestion> &table, const QString &keyOrLabel)
{
    for (const ConversationSuggestion &entry : table) {
        if (entry.key == keyOrLabel) {
            return &entry;
        }
    }
    for (const ConversationSuggestion &entry : table) {
        if (entry.label == keyOrLabel) {
            return &entry;
        }
    }
    return nullptr;
}

} // namespace zentrik
