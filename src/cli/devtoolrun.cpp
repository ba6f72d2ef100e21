#include "devtoolrun.h"

#include "clisession.h"
#include "runhistory.h"
#include "verb.h"

#include "tools/devtoolviewmodel.h"

namespace zentrik::cli {

int runDevTool(
    APIManager &manager, RunHistory &history, const QString &tool, const QString &suggestion, const QString &text)
{
    DevToolViewModel devTool;
    devTool.setApiManager(&manager);
    devTool.setTool(tool);
    devTool.setHistory(&history.service());
    const auto continued = history.conversationToContinue(tool);
    if (const int *exit = std::get_if<int>(&continued)) {
        return *exit;
    }
    if (const auto &reference = std::get<std::optional<QString>>(continued)) {
        if (auto exit = openStoredConversation(devTool, *reference)) {
            return *exit;
        }
    }
    devTool.setSelectedSuggestion(suggestion);
    devTool.setInput(text);

    IncrementalPrinter printer;
    QObject::connect(&devTool, &DevToolViewModel::streamedContentChanged, &devTool, [&] {
        if (!devTool.streamedContent().isEmpty()) {
            printer.update(devTool.streamedContent());
        }
    });
    devTool.send();
    waitWhile(devTool, &ChatToolViewModel::isProcessingChanged, [&] { return devTool.isProcessing(); });
    const ChatMessageListModel *messages = devTool.messages();
    const bool replied
        = messages->count() > 0 && messages->at(messages->count() - 1).role == ChatMessageRecord::Role::assistant;
    if (replied) {
        // A streamed reply is printed already; the rest of it (or the whole one-shot reply) now.
        printer.update(messages->at(messages->count() - 1).content);
    }
    printer.finish();
    if (!devTool.errorMessage().isEmpty()) {
        return fail(firstParagraph(devTool.errorMessage()));
    }
    return replied ? exitSuccess : fail(QStringLiteral("no reply arrived"));
}

int runDevToolVerb(const DevToolVerb &verb, const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(verb.description);
    parser.addOption(verb.choice);
    const ModelOptions modelOptions;
    modelOptions.addTo(parser);
    const HistoryOptions historyOptions;
    historyOptions.addTo(parser);
    parser.addPositionalArgument(QStringLiteral("TEXT"), verb.textHelp);
    if (auto exit = parseArguments(parser, verb.name, arguments)) {
        return *exit;
    }
    const QStringList positional = parser.positionalArguments();
    if (positional.size() > 1) {
        return usageError(verb.name, QStringLiteral("%1 takes one TEXT (quote it)").arg(verb.name));
    }
    const std::variant<QString, int> choice = verb.choose(parser);
    if (const int *exit = std::get_if<int>(&choice)) {
        return *exit;
    }
    auto history = RunHistory::create(parser, historyOptions, verb.name);
    if (const int *exit = std::get_if<int>(&history)) {
        return *exit;
    }
    const std::optional<QString> text = textArgument(positional);
    if (!text) {
        return exitFailure;
    }
    if (text->trimmed().isEmpty()) {
        return usageError(verb.name, verb.nothingToSend);
    }
    const std::unique_ptr<APIManager> manager = makeApiManager(parser, modelOptions);
    if (!manager) {
        return exitFailure;
    }
    return runDevTool(
        *manager, *std::get<std::unique_ptr<RunHistory>>(history), verb.tool, std::get<QString>(choice), *text);
}

} // namespace zentrik::cli
