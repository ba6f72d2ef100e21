#pragma once

#include "clisession.h"
#include "verb.h"

#include "history/historyservice.h"

#include <QCommandLineOption>
#include <QCommandLineParser>

#include <memory>
#include <optional>
#include <variant>

namespace zentrik::cli {

// The history options of the verbs that save their exchange.
struct HistoryOptions
{
    QCommandLineOption continueId { QStringLiteral("continue"),
        QStringLiteral("Go on with this stored conversation ('zentrik-cli history list' shows the numbers)."),
        QStringLiteral("ID") };
    QCommandLineOption continueLast { QStringLiteral("continue-last"),
        QStringLiteral("Go on with this tool's latest stored conversation.") };
    QCommandLineOption noSave { QStringLiteral("no-save"), QStringLiteral("Keep nothing of this run in the history.") };
    void addTo(QCommandLineParser &parser) const { parser.addOptions({ continueId, continueLast, noSave }); }
};

// The history of one run of such a verb: saves go through the same worker thread as in the
// window, and the run waits for them before it ends.
class RunHistory
{
public:
    // The options checked (one way of continuing at most); the exit code otherwise.
    [[nodiscard]] static std::variant<std::unique_ptr<RunHistory>, int> create(
        const QCommandLineParser &parser, const HistoryOptions &options, const QString &verb);
    ~RunHistory();
    RunHistory(const RunHistory &) = delete;
    RunHistory &operator=(const RunHistory &) = delete;

    [[nodiscard]] HistoryService &service() { return m_service; }
    // The conversation to go on with: the one given, this tool's latest, or none (nullopt).
    // Exit code, with the reason printed, when --continue-last finds none.
    [[nodiscard]] std::variant<std::optional<QString>, int> conversationToContinue(const QString &tool);
    // Waits for every save, then says on stderr if the history could not be written.
    void finish();

private:
    RunHistory() = default;

    HistoryService m_service;
    std::optional<QString> m_reference;
    bool m_latest = false;
    bool m_finished = false;
};

// Opens the conversation in the tool (a chat view model) and waits for it; the exit code
// when it cannot be opened.
template<typename Tool> [[nodiscard]] std::optional<int> openStoredConversation(Tool &tool, const QString &reference)
{
    std::optional<bool> opened;
    QEventLoop loop;
    QObject::connect(&tool, &Tool::conversationOpened, &loop, [&](bool succeeded) {
        opened = succeeded;
        loop.quit();
    });
    tool.openConversation(reference);
    if (!opened) {
        loop.exec();
    }
    if (!opened.value_or(false)) {
        return fail(firstParagraph(tool.errorMessage()));
    }
    return std::nullopt;
}

} // namespace zentrik::cli
