// zentrik-cli ask: one send of Ask Me Anything. Waits for the whole reply as the window
// does, or streams it with --stream.
#include "clisession.h"
#include "verb.h"
#include "verbs.h"

#include "privacy/piimanager.h"
#include "tools/askmeanythingviewmodel.h"
#include "tools/conversationsuggestions.h"

#include <QEventLoop>

using namespace zentrik;
using namespace zentrik::cli;

namespace {

const QString verbName = QStringLiteral("ask");

QString suggestionLabels()
{
    QStringList labels;
    for (const ConversationSuggestion &suggestion : askMeAnythingSuggestions()) {
        labels.append(QStringLiteral("\"%1\"").arg(suggestion.label));
    }
    return labels.join(QStringLiteral(", "));
}

// The streamed variant: the same checks as the window, then the reply piece by piece.
int streamAnswer(APIManager &manager, const QString &text, const ConversationSuggestion *suggestion,
    std::optional<SendChoice> preset)
{
    if (const std::optional<QString> problem = manager.preflightMessage()) {
        return fail(*problem);
    }
    QString chosen = text;
    const QString redacted = PIIManager::redact(text);
    if (redacted != text) {
        const auto choice = resolvePersonalInformation(preset, text, redacted, verbName);
        if (const int *exit = std::get_if<int>(&choice)) {
            return *exit;
        }
        if (std::get<SendChoice>(choice) == SendChoice::redacted) {
            chosen = redacted;
        }
    }
    const QString prompt = suggestion ? suggestion->prompt + chosen : chosen;
    QEventLoop loop;
    IncrementalPrinter printer;
    QString received;
    int exitCode = exitSuccess;
    manager.streamText(
        prompt, &loop,
        [&](const QString &piece) {
            received += piece;
            printer.update(received);
        },
        [&](const std::optional<APIError> &error) {
            printer.finish();
            if (error) {
                exitCode = fail(error->message());
            }
            loop.quit();
        });
    loop.exec();
    return exitCode;
}

int runAsk(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Asks the selected text model, as Ask Me Anything does, and prints the reply. "
                       "Personal information is found and redacted first; on a terminal you choose what to "
                       "send, otherwise say it with --send."));
    const QCommandLineOption suggestionOption(QStringLiteral("suggestion"),
        QStringLiteral("Put a ready-made request before the text: %1.").arg(suggestionLabels()),
        QStringLiteral("LABEL"));
    const QCommandLineOption streamOption(
        QStringLiteral("stream"), QStringLiteral("Print the reply while it arrives."));
    parser.addOption(suggestionOption);
    parser.addOption(streamOption);
    const ModelOptions modelOptions;
    modelOptions.addTo(parser);
    const SendOption sendOption;
    sendOption.addTo(parser);
    parser.addPositionalArgument(QStringLiteral("TEXT"), QStringLiteral("The question; - or nothing reads stdin."));
    if (auto exit = parseArguments(parser, verbName, arguments)) {
        return *exit;
    }
    const QStringList positional = parser.positionalArguments();
    if (positional.size() > 1) {
        return usageError(verbName, QStringLiteral("ask takes one TEXT (quote it)"));
    }
    const ConversationSuggestion *suggestion = nullptr;
    if (parser.isSet(suggestionOption)) {
        suggestion = findSuggestion(askMeAnythingSuggestions(), parser.value(suggestionOption));
        if (!suggestion) {
            return usageError(verbName,
                QStringLiteral("unknown suggestion '%1'; choose one of %2")
                    .arg(parser.value(suggestionOption), suggestionLabels()));
        }
    }
    const auto send = parseSendChoice(parser, sendOption, verbName);
    if (const int *exit = std::get_if<int>(&send)) {
        return *exit;
    }
    const QString text = textArgument(positional).trimmed();
    if (text.isEmpty()) {
        return usageError(verbName, QStringLiteral("nothing to ask: give TEXT or pipe it in"));
    }

    const std::unique_ptr<APIManager> manager = makeApiManager(parser, modelOptions);
    const std::optional<SendChoice> preset = std::get<std::optional<SendChoice>>(send);
    if (parser.isSet(streamOption)) {
        return streamAnswer(*manager, text, suggestion, preset);
    }

    AskMeAnythingViewModel chat;
    chat.setApiManager(manager.get());
    if (suggestion) {
        chat.setSelectedSuggestion(suggestion->label);
    }
    chat.setNewMessage(text);
    chat.send();
    if (chat.piiAlertVM()->showAlert()) {
        const auto choice = resolvePersonalInformation(
            preset, chat.piiAlertVM()->originalMessage(), chat.piiAlertVM()->redactedMessage(), verbName);
        if (const int *exit = std::get_if<int>(&choice)) {
            return *exit;
        }
        std::get<SendChoice>(choice) == SendChoice::original ? chat.sendOriginal() : chat.sendRedacted();
    }
    if (chat.isProcessing()) {
        QEventLoop loop;
        QObject::connect(&chat, &ChatToolViewModel::isProcessingChanged, &loop, [&] {
            if (!chat.isProcessing()) {
                loop.quit();
            }
        });
        loop.exec();
    }
    if (!chat.errorMessage().isEmpty()) {
        return fail(firstParagraph(chat.errorMessage()));
    }
    const ChatMessageListModel *messages = chat.messages();
    if (messages->count() == 0 || messages->at(messages->count() - 1).role != ChatMessageRecord::Role::assistant) {
        return fail(QStringLiteral("no reply arrived"));
    }
    IncrementalPrinter printer;
    printer.update(messages->at(messages->count() - 1).content);
    printer.finish();
    return exitSuccess;
}

} // namespace

zentrik::cli::Verb zentrik::cli::askVerb()
{
    return {QStringLiteral("ask"), QStringLiteral("Ask the selected text model, as Ask Me Anything does (--stream to stream)"), runAsk};
}
