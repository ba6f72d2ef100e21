// zentrik-cli pdf summary FILE / pdf ask FILE QUESTION: the PDF chat from a shell.
#include "clisession.h"
#include "runhistory.h"
#include "verb.h"
#include "verbs.h"

#include "pdf/pdfchatviewmodel.h"

#include <QFileInfo>

using namespace zentrik;
using namespace zentrik::cli;

namespace {

const QString verbName = QStringLiteral("pdf");

// Opens the document for a question: the given file, or with --continue the stored
// conversation's (a FILE given then must be that same document).
std::optional<int> continueDocument(PdfChatViewModel &chat, RunHistory &history, const QString &file)
{
    const auto continued = history.conversationToContinue(chat.historyTool());
    if (const int *exit = std::get_if<int>(&continued)) {
        return *exit;
    }
    const auto &reference = std::get<std::optional<QString>>(continued);
    if (!reference) {
        return chat.openFile(file) ? std::nullopt : std::optional<int>(fail(chat.documentError()));
    }
    if (auto exit = openStoredConversation(chat, *reference)) {
        return exit;
    }
    const QString conversation = chat.conversationId();
    if (!file.isEmpty() && (!chat.hasDocument() || QFileInfo(file).absoluteFilePath() != chat.source().toLocalFile())) {
        if (!chat.openFile(file)) {
            return fail(chat.documentError());
        }
        if (chat.conversationId() != conversation) {
            return fail(QStringLiteral("%1 is not the PDF that conversation is about").arg(file));
        }
    }
    if (!chat.hasDocument()) {
        return fail(firstParagraph(chat.documentNotice()));
    }
    return std::nullopt;
}

int runPdf(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Chats with a PDF.\n"
                       "  pdf summary FILE            title, brief summary and key points\n"
                       "  pdf ask FILE QUESTION       an answer that cites the pages it used\n"
                       "  pdf ask --continue ID [FILE] QUESTION   a follow-up in a stored conversation\n"
                       "Personal information in the question or the document is found first; on a terminal you choose "
                       "what to send, otherwise say it with --send."));
    parser.addPositionalArgument(QStringLiteral("action"), QStringLiteral("summary or ask"));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The PDF."));
    parser.addPositionalArgument(
        QStringLiteral("QUESTION"), QStringLiteral("ask only; - reads stdin"), QStringLiteral("[QUESTION]"));
    const ModelOptions modelOptions;
    modelOptions.addTo(parser);
    const SendOption sendOption;
    sendOption.addTo(parser);
    const HistoryOptions historyOptions;
    historyOptions.addTo(parser);
    if (auto exit = parseArguments(parser, verbName, arguments)) {
        return *exit;
    }
    QStringList args = parser.positionalArguments();
    const QString action = args.value(0);
    const bool continuing = parser.isSet(historyOptions.continueId) || parser.isSet(historyOptions.continueLast);
    if (action == QStringLiteral("ask") && continuing && args.size() == 2) {
        args.insert(1, QString()); // the document comes from the stored conversation
    }
    if (action != QStringLiteral("summary") && action != QStringLiteral("ask")) {
        return usageError(verbName,
            action.isEmpty() ? QStringLiteral("say summary or ask")
                             : QStringLiteral("unknown action '%1'").arg(action));
    }
    if (action == QStringLiteral("summary") ? args.size() != 2 : (args.size() < 2 || args.size() > 3)) {
        return usageError(verbName,
            action == QStringLiteral("summary") ? QStringLiteral("pdf summary takes one FILE")
                                                : QStringLiteral("pdf ask takes a FILE and one QUESTION (quote it)"));
    }
    if (continuing && action != QStringLiteral("ask")) {
        return usageError(verbName, QStringLiteral("--continue and --continue-last go with pdf ask"));
    }
    const auto send = parseSendChoice(parser, sendOption, verbName);
    if (const int *exit = std::get_if<int>(&send)) {
        return *exit;
    }
    QString question;
    if (action == QStringLiteral("ask")) {
        const std::optional<QString> input = textArgument(args, 2);
        if (!input) {
            return exitFailure;
        }
        question = input->trimmed();
        if (question.isEmpty()) {
            return usageError(verbName, QStringLiteral("the question is empty"));
        }
    }
    auto created = RunHistory::create(parser, historyOptions, verbName);
    if (const int *exit = std::get_if<int>(&created)) {
        return *exit;
    }
    RunHistory &history = *std::get<std::unique_ptr<RunHistory>>(created);
    const std::unique_ptr<APIManager> manager = makeApiManager(parser, modelOptions);
    if (!manager) {
        return exitFailure;
    }
    PdfChatViewModel chat;
    chat.setApiManager(manager.get());
    if (action == QStringLiteral("ask")) {
        chat.setHistory(&history.service());
        if (auto exit = continueDocument(chat, history, args.at(1))) {
            return *exit;
        }
    } else if (!chat.openFile(args.at(1))) {
        return fail(chat.documentError());
    }
    const std::optional<SendChoice> preset = std::get<std::optional<SendChoice>>(send);

    if (action == QStringLiteral("summary")) {
        chat.summarize();
        if (auto exit = settlePersonalInformation(chat, preset, verbName)) {
            return *exit;
        }
        waitWhile(chat, &PdfChatViewModel::isSummarizingChanged, [&] { return chat.isSummarizing(); });
        if (!chat.errorMessage().isEmpty()) {
            return fail(firstParagraph(chat.errorMessage()));
        }
        if (!chat.summaryMarkdown().isEmpty()) {
            printOut(chat.summaryMarkdown().trimmed() + QLatin1Char('\n'));
            return exitSuccess;
        }
        QString card
            = chat.summaryTitle() + QStringLiteral("\n\n") + chat.summaryText() + QStringLiteral("\n\nKey points:\n");
        for (const QString &point : chat.keyPoints()) {
            card += QStringLiteral("- %1\n").arg(point);
        }
        printOut(card);
        return exitSuccess;
    }

    chat.setNewMessage(question);
    chat.send();
    if (!chat.errorMessage().isEmpty()) {
        return fail(firstParagraph(chat.errorMessage()));
    }
    if (auto exit = settlePersonalInformation(chat, preset, verbName)) {
        return *exit;
    }
    waitWhile(chat, &ChatToolViewModel::isProcessingChanged, [&] { return chat.isProcessing(); });
    if (!chat.errorMessage().isEmpty()) {
        return fail(firstParagraph(chat.errorMessage()));
    }
    const ChatMessageListModel *messages = chat.messages();
    if (messages->count() < 2) {
        return fail(QStringLiteral("no reply arrived"));
    }
    const QString answer = messages->at(messages->count() - 1).content.trimmed();
    printOut(answer + QLatin1Char('\n'));
    return exitSuccess;
}

} // namespace

zentrik::cli::Verb zentrik::cli::pdfVerb()
{
    return { QStringLiteral("pdf"), QStringLiteral("Summarize a PDF or ask about it"), runPdf };
}
