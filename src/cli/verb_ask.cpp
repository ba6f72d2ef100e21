// zentrik-cli ask: one send of Ask Me Anything. Waits for the whole reply as the window
// does, or streams it with --stream.
#include "clisession.h"
#include "runhistory.h"
#include "verb.h"
#include "verbs.h"

#include "tools/askmeanythingviewmodel.h"
#include "tools/conversationsuggestions.h"

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

// Ask Me Anything with the reply printed as it arrives: the same checks, privacy dialog and
// prompt as the screen, only the request streams.
class StreamedAsk : public AskMeAnythingViewModel
{
public:
    explicit StreamedAsk(IncrementalPrinter &printer)
        : m_printer(printer)
    { }

protected:
    void request(const Turn &turn, const QString &prompt, const QList<ChatMessage> &earlier) override
    {
        apiManager()->streamText(
            prompt, earlier, this,
            [this](const QString &piece) {
                m_received += piece;
                m_printer.update(m_received);
            },
            [this, turn](const std::optional<APIError> &error) {
                if (error) {
                    setErrorMessage(error->message());
                }
                finishTurn(turn, m_received, error ? MessageEnding::failed : MessageEnding::complete);
            });
    }

private:
    IncrementalPrinter &m_printer;
    QString m_received;
};

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
    const HistoryOptions historyOptions;
    historyOptions.addTo(parser);
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
    auto created = RunHistory::create(parser, historyOptions, verbName);
    if (const int *exit = std::get_if<int>(&created)) {
        return *exit;
    }
    const std::unique_ptr<RunHistory> history = std::move(std::get<std::unique_ptr<RunHistory>>(created));
    const std::optional<QString> input = textArgument(positional);
    if (!input) {
        return exitFailure;
    }
    const QString text = input->trimmed();
    if (text.isEmpty()) {
        return usageError(verbName, QStringLiteral("nothing to ask: give TEXT or pipe it in"));
    }
    const std::unique_ptr<APIManager> manager = makeApiManager(parser, modelOptions);
    if (!manager) {
        return exitFailure;
    }
    IncrementalPrinter printer;
    const std::unique_ptr<AskMeAnythingViewModel> chat = parser.isSet(streamOption)
        ? std::make_unique<StreamedAsk>(printer)
        : std::make_unique<AskMeAnythingViewModel>();
    chat->setApiManager(manager.get());
    chat->setHistory(&history->service());
    const auto continued = history->conversationToContinue(chat->historyTool());
    if (const int *exit = std::get_if<int>(&continued)) {
        return *exit;
    }
    if (const auto &reference = std::get<std::optional<QString>>(continued)) {
        if (auto exit = openStoredConversation(*chat, *reference)) {
            return *exit;
        }
    }
    if (suggestion) {
        chat->setSelectedSuggestion(suggestion->label);
    }
    chat->setNewMessage(text);
    chat->send();
    if (auto exit = settlePersonalInformation(*chat, std::get<std::optional<SendChoice>>(send), verbName)) {
        return *exit;
    }
    waitWhile(*chat, &ChatToolViewModel::isProcessingChanged, [&] { return chat->isProcessing(); });
    if (!chat->errorMessage().isEmpty()) {
        // A streamed reply cut short keeps what arrived, on a line of its own.
        printer.finish();
        return fail(firstParagraph(chat->errorMessage()));
    }
    const ChatMessageListModel *messages = chat->messages();
    if (messages->count() == 0 || messages->at(messages->count() - 1).role != ChatMessageRecord::Role::assistant) {
        return fail(QStringLiteral("no reply arrived"));
    }
    // Whatever a stream has not printed yet; the whole reply when it waited.
    printer.update(messages->at(messages->count() - 1).content);
    printer.finish();
    return exitSuccess;
}

} // namespace

zentrik::cli::Verb zentrik::cli::askVerb()
{
    return { QStringLiteral("ask"),
        QStringLiteral("Ask the selected text model, as Ask Me Anything does (--stream to stream)"), runAsk };
}
