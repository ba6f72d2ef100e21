#include "verb.h"
#include "verbs.h"

#include "privacy/piimanager.h"

#include <QCommandLineParser>
#include <QCoreApplication>

using namespace zentrik::cli;

namespace {

int runRedact(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QCoreApplication::translate("zentrik-cli",
        "Prints the copy of TEXT that would be sent to a model, with personal "
        "information replaced by tags such as [EMAIL_ADDRESS] and [NAME]."));
    parser.addPositionalArgument(QStringLiteral("TEXT"),
        QCoreApplication::translate("zentrik-cli", "The text to redact; '-' or nothing reads stdin."),
        QStringLiteral("[TEXT|-]"));
    if (const std::optional<int> exit = parseArguments(parser, QStringLiteral("redact"), arguments)) {
        return *exit;
    }
    const QStringList positional = parser.positionalArguments();
    if (positional.size() > 1) {
        return usageError(
            QStringLiteral("redact"), QCoreApplication::translate("zentrik-cli", "redact takes one text"));
    }
    const bool fromArgument = !positional.isEmpty() && positional.constFirst() != QStringLiteral("-");
    const std::optional<QString> input = textArgument(positional);
    if (!input) {
        return exitFailure;
    }
    const QString redacted = zentrik::PIIManager::redact(*input);
    // Text from stdin comes back byte for byte apart from the tags; an argument gets a newline.
    printOut(fromArgument ? redacted + QLatin1Char('\n') : redacted);
    return exitSuccess;
}

} // namespace

zentrik::cli::Verb zentrik::cli::redactVerb()
{
    return { QStringLiteral("redact"), QStringLiteral("the privacy guard's redacted copy of a text"), runRedact };
}
