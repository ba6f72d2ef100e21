#include "runhistory.h"

#include "verb.h"

#include <QCoreApplication>
#include <QEventLoop>

namespace zentrik::cli {

std::variant<std::unique_ptr<RunHistory>, int> RunHistory::create(
    const QCommandLineParser &parser, const HistoryOptions &options, const QString &verb)
{
    if (parser.isSet(options.continueId) && parser.isSet(options.continueLast)) {
        return usageError(verb, QStringLiteral("give --continue ID or --continue-last, not both"));
    }
    std::unique_ptr<RunHistory> history(new RunHistory);
    if (parser.isSet(options.continueId)) {
        history->m_reference = parser.value(options.continueId);
    }
    history->m_latest = parser.isSet(options.continueLast);
    if (parser.isSet(options.noSave)) {
        history->m_service.suspendSaving();
    }
    history->m_service.start();
    return history;
}

RunHistory::~RunHistory()
{
    finish();
}

std::variant<std::optional<QString>, int> RunHistory::conversationToContinue(const QString &tool)
{
    if (!m_latest) {
        return m_reference;
    }
    std::optional<QString> latest;
    QEventLoop loop;
    m_service.list(tool, 1, &loop, [&](const QList<ConversationRecord> &found) {
        if (!found.isEmpty()) {
            latest = found.first().uid;
        }
        loop.quit();
    });
    loop.exec();
    if (!latest) {
        QCoreApplication::processEvents(); // a notice about the history file comes first
        return fail(
            m_service.notice().isEmpty() ? QStringLiteral("no stored conversation to continue") : m_service.notice());
    }
    return latest;
}

void RunHistory::finish()
{
    if (std::exchange(m_finished, true)) {
        return;
    }
    if (!m_service.waitForIdle()) {
        printErr(QStringLiteral("zentrik-cli: the history did not finish saving in time\n"));
        return;
    }
    QCoreApplication::processEvents(); // the saves' answers, and any notice with them
    if (!m_service.notice().isEmpty()) {
        printErr(QStringLiteral("zentrik-cli: %1\n").arg(m_service.notice()));
    }
}

} // namespace zentrik::cli
