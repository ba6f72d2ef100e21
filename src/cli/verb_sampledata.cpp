// zentrik-cli sample-data --format LABEL: one send of the Sample Data Generator.
#include "clisession.h"
#include "devtoolrun.h"
#include "verb.h"
#include "verbs.h"

#include "tools/conversationsuggestions.h"

using namespace zentrik;
using namespace zentrik::cli;

namespace {

const QString verbName = QStringLiteral("sample-data");

int runSampleData(const QStringList &arguments)
{
    QStringList formats;
    for (const ConversationSuggestion &format : sampleDataFormats()) {
        formats.append(format.label);
    }
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Generates sample data from a description (TEXT or stdin) in the chosen format. "
                       "Personal information is redacted before sending."));
    const QCommandLineOption formatOption(QStringLiteral("format"),
        QStringLiteral("The output format: %1.").arg(formats.join(QStringLiteral(", "))), QStringLiteral("LABEL"));
    parser.addOption(formatOption);
    const ModelOptions modelOptions;
    modelOptions.addTo(parser);
    parser.addPositionalArgument(
        QStringLiteral("TEXT"), QStringLiteral("What the data is about; - or nothing reads stdin."));
    if (auto exit = parseArguments(parser, verbName, arguments)) {
        return *exit;
    }
    const QStringList positional = parser.positionalArguments();
    if (positional.size() > 1) {
        return usageError(verbName, QStringLiteral("sample-data takes one TEXT (quote it)"));
    }
    if (!parser.isSet(formatOption)) {
        return usageError(verbName, QStringLiteral("choose a --format: %1").arg(formats.join(QStringLiteral(", "))));
    }
    const ConversationSuggestion *format = nullptr;
    for (const ConversationSuggestion &candidate : sampleDataFormats()) {
        if (candidate.label.compare(parser.value(formatOption), Qt::CaseInsensitive) == 0) {
            format = &candidate;
        }
    }
    if (!format) {
        return usageError(verbName,
            QStringLiteral("unknown format '%1'; choose one of %2")
                .arg(parser.value(formatOption), formats.join(QStringLiteral(", "))));
    }
    const std::optional<QString> input = textArgument(positional);
    if (!input) {
        return exitFailure;
    }
    const QString &text = *input;
    if (text.trimmed().isEmpty()) {
        return usageError(verbName, QStringLiteral("nothing to generate from: give TEXT or pipe it in"));
    }
    const std::unique_ptr<APIManager> manager = makeApiManager(parser, modelOptions);
    if (!manager) {
        return exitFailure;
    }
    return runDevTool(*manager, QStringLiteral("sampleData"), format->label, text);
}

} // namespace

zentrik::cli::Verb zentrik::cli::sampleDataVerb()
{
    return { QStringLiteral("sample-data"), QStringLiteral("Generate sample data in a format"), runSampleData };
}
