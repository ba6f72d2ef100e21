// zentrik-cli prompt TITLE --field LABEL=VALUE ...: prints the prompt a form-driven
// assistant would send for these values, without sending anything.
#include "verb.h"
#include "verbs.h"

#include "formarguments.h"

using namespace zentrik;
using namespace zentrik::cli;

namespace {

const QString verbName = QStringLiteral("prompt");

int runPrompt(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Prints the prompt a form-driven assistant composes from the given field values. "
                       "Nothing is sent. 'zentrik-cli assistants' lists the titles and their fields."));
    const QCommandLineOption fieldOption(QStringLiteral("field"),
        QStringLiteral("A field's value; repeat for more fields."), QStringLiteral("LABEL=VALUE"));
    parser.addOption(fieldOption);
    parser.addPositionalArgument(
        QStringLiteral("TITLE"), QStringLiteral("The assistant's title, e.g. \"Slogan Generator\"."));
    if (const auto done = parseArguments(parser, verbName, arguments)) {
        return *done;
    }
    const QStringList positional = parser.positionalArguments();
    if (positional.isEmpty()) {
        return usageError(verbName, QStringLiteral("missing the assistant's title"));
    }
    if (positional.size() > 1) {
        return usageError(verbName,
            QStringLiteral("expected one title, got %1 words (quote a title with spaces)").arg(positional.size()));
    }

    const auto parsed = parseFormArguments(verbName, positional.first(), parser.values(fieldOption));
    if (const int *exit = std::get_if<int>(&parsed)) {
        return *exit;
    }
    const auto &form = std::get<FormSelection>(parsed);
    printOut(form.family->composePrompt(form.assistant->title, form.inputs) + QLatin1Char('\n'));
    return exitSuccess;
}

} // namespace

zentrik::cli::Verb zentrik::cli::promptVerb()
{
    return { QStringLiteral("prompt"), QStringLiteral("the prompt a form-driven assistant composes, not sent"),
        runPrompt };
}
