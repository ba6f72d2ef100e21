// zentrik-cli debug: one send of the Code Debugger.
#include "clisession.h"
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
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Asks the Code Debugger about CODE (or stdin). Personal information is redacted "
                       "before sending; the reply streams for the free and OpenAI models."));
    const QCommandLineOption suggestionOption(QStringLiteral("suggestion"),
        QStringLiteral("The kind of problem: %1.").arg(keys.join(QStringLiteral(", "))), QStringLiteral("KEY"));
    parser.addOption(suggestionOption);
    const ModelOptions modelOptions;
    modelOptions.addTo(parser);
    parser.addPositionalArgument(
        QStringLiteral("TEXT"), QStringLiteral("The code or question; - or nothing reads stdin."));
    if (auto exit = parseArguments(parser, verbName, arguments)) {
        return *exit;
    }
    const QStringList positional = parser.positionalArguments();
    if (positional.size() > 1) {
        return usageError(verbName, QStringLiteral("debug takes one TEXT (quote it)"));
    }
    const QString suggestion = parser.value(suggestionOption);
    if (!suggestion.isEmpty() && !findSuggestion(debuggerSuggestions(), suggestion)) {
        return usageError(verbName,
            QStringLiteral("unknown suggestion '%1'; choose one of %2")
                .arg(suggestion, keys.join(QStringLiteral(", "))));
    }
    const std::optional<QString> input = textArgument(positional);
    if (!input) {
        return exitFailure;
    }
    const QString &text = *input;
    if (text.trimmed().isEmpty()) {
        return usageError(verbName, QStringLiteral("nothing to debug: give TEXT or pipe it in"));
    }
    const std::unique_ptr<APIManager> manager = makeApiManager(parser, modelOptions);
    if (!manager) {
        return exitFailure;
    }
    return runDevTool(*manager, QStringLiteral("debugger"), suggestion, text);
}

} // namespace

zentrik::cli::Verb zentrik::cli::debugVerb()
{
    return { QStringLiteral("debug"), QStringLiteral("Ask the Code Debugger"), runDebug };
}
