// zentrik-cli debug: one send of the Code Debugger.
#include "devtoolrun.h"
#include "verb.h"
#include "verbs.h"

#include "tools/conversationsuggestions.h"

using namespace zentrik;
using namespace zentrik::cli;

namespace {

const QString verbName = QStringLiteral("debug");

int runDebug(const QStringList &arguments)
{
    QStringList keys;
    for (const ConversationSuggestion &suggestion : debuggerSuggestions()) {
        keys.append(suggestion.key);
    }
    const QCommandLineOption suggestionOption(QStringLiteral("suggestion"),
        QStringLiteral("The kind of problem: %1.").arg(keys.join(QStringLiteral(", "))), QStringLiteral("KEY"));
    const DevToolVerb verb { verbName, QStringLiteral("debugger"),
        QStringLiteral("Asks the Code Debugger about CODE (or stdin). Personal information is redacted "
                       "before sending; the reply streams for the free and OpenAI models."),
        suggestionOption, QStringLiteral("The code or question; - or nothing reads stdin."),
        QStringLiteral("nothing to debug: give TEXT or pipe it in"),
        [&](const QCommandLineParser &parser) -> std::variant<QString, int> {
            const QString suggestion = parser.value(suggestionOption);
            if (!suggestion.isEmpty() && !findSuggestion(debuggerSuggestions(), suggestion)) {
                return usageError(verbName,
                    QStringLiteral("unknown suggestion '%1'; choose one of %2")
                        .arg(suggestion, keys.join(QStringLiteral(", "))));
            }
            return suggestion;
        } };
    return runDevToolVerb(verb, arguments);
}

} // namespace

zentrik::cli::Verb zentrik::cli::debugVerb()
{
    return { QStringLiteral("debug"), QStringLiteral("Ask the Code Debugger"), runDebug };
}
