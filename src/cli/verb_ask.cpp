#include "model/apimanager.h"
#include "verb.h"

#include <QEventLoop>

using namespace zentrik;
using namespace zentrik::cli;

namespace {

const QString verbName = QStringLiteral("ask");

int runAsk(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Sends TEXT (or stdin) to the selected text model and prints the reply. "
                       "OPENAI_API_KEY and ANTHROPIC_API_KEY, when set, win over the stored keys."));
    const QCommandLineOption streamOption(QStringLiteral("stream"),
                                          QStringLiteral("Print the reply while it arrives."));
    const QCommandLineOption modelOption(QStringLiteral("model"),
                                         QStringLiteral("Use this text model for this run."), QStringLiteral("ID"));
    parser.addOption(streamOption);
    parser.addOption(modelOption);
    parser.addPositionalArgument(QStringLiteral("TEXT"), QStringLiteral("The prompt; - or nothing reads stdin."));
    if (auto exit = parseArguments(parser, verbName, arguments)) {
        return *exit;
    }
    const QStringList positional = parser.positionalArguments();
    if (positional.size() > 1) {
        return usageError(verbName, QStringLiteral("ask takes one TEXT (quote it)"));
    }
    const QString prompt = textArgument(positional);
    if (prompt.trimmed().isEmpty()) {
        return usageError(verbName, QStringLiteral("nothing to ask: give TEXT or pipe it in"));
    }

    APIManager manager;
    manager.overrideUserKeys(qEnvironmentVariable("OPENAI_API_KEY"), qEnvironmentVariable("ANTHROPIC_API_KEY"),
                             qEnvironmentVariable("FAL_KEY"));
    if (parser.isSet(modelOption)) {
        manager.setSelectedTextModel(parser.value(modelOption));
    }

    QEventLoop loop;
    int exitCode = exitSuccess;
    if (!parser.isSet(streamOption)) {
        manager.generateText(prompt, &loop, [&](const TextResult &result) {
            if (const auto *error = std::get_if<APIError>(&result)) {
                exitCode = fail(error->message());
            } else {
                const QString &reply = std::get<QString>(result);
                printOut(reply.endsWith(QLatin1Char('\n')) ? reply : reply + QLatin1Char('\n'));
            }
            loop.quit();
        });
        loop.exec();
        return exitCode;
    }

    bool endsWithNewline = true;
    manager.streamText(
        prompt, &loop,
        [&endsWithNewline](const QString &piece) {
            printOut(piece);
            endsWithNewline = piece.endsWith(QLatin1Char('\n'));
        },
        [&](const std::optional<APIError> &error) {
            // The reply keeps its own line, whether or not a failure follows it.
            if (!endsWithNewline) {
                printOut(QStringLiteral("\n"));
            }
            if (error) {
                exitCode = fail(error->message());
            }
            loop.quit();
        });
    loop.exec();
    return exitCode;
}

} // namespace

ZENTRIK_CLI_VERB(ask, QStringLiteral("ask"),
                 QStringLiteral("Send a prompt to the selected text model (--stream to print it as it arrives)"),
                 runAsk)
