// zentrik-cli sample-data --format LABEL: one send of the Sample Data Generator.
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
    const QCommandLineOption formatOption(QStringLiteral("format"),
        QStringLiteral("The output format: %1.").arg(formats.join(QStringLiteral(", "))), QStringLiteral("LABEL"));
    const DevToolVerb verb { verbName, QStringLiteral("sampleData"),
        QStringLiteral("Generates sample data from a description (TEXT or stdin) in the chosen format. "
                       "Personal information is redacted before sending."),
        formatOption, QStringLiteral("What the data is about; - or nothing reads stdin."),
        QStringLiteral("nothing to generate from: give TEXT or pipe it in"),
        [&](const QCommandLineParser &parser) -> std::variant<QString, int> {
            if (!parser.isSet(formatOption)) {
                return usageError(
                    verbName, QStringLiteral("choose a --format: %1").arg(formats.join(QStringLiteral(", "))));
            }
            for (const ConversationSuggestion &candidate : sampleDataFormats()) {
                if (candidate.label.compare(parser.value(formatOption), Qt::CaseInsensitive) == 0) {
                    return candidate.label;
                }
            }
            return usageError(verbName,
                QStringLiteral("unknown format '%1'; choose one of %2")
                    .arg(parser.value(formatOption), formats.join(QStringLiteral(", "))));
        } };
    return runDevToolVerb(verb, arguments);
}

} // namespace

zentrik::cli::Verb zentrik::cli::sampleDataVerb()
{
    return { QStringLiteral("sample-data"), QStringLiteral("Generate sample data in a format"), runSampleData };
}
