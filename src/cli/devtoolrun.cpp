#include "devtoolrun.h"

#include "clisession.h"
#include "verb.h"

#include "tools/devtoolviewmodel.h"

namespace zentrik::cli {

int runDevTool(APIManager &manager, const QString &tool, const QString &suggestion, const QString &text)
{
    DevToolViewModel devTool;
    devTool.setApiManager(&manager);
    devTool.setTool(tool);
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

} // namespace zentrik::cli
