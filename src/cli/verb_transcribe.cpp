// zentrik-cli transcribe: speech to text through OpenAI, as the voice notes screen does.
#include "transcribefile.h"
#include "verb.h"
#include "verbs.h"

#include <QLoggingCategory>

using namespace zentrik;
using namespace zentrik::cli;

namespace {

const QString verbName = QStringLiteral("transcribe");

int runTranscribe(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Prints the transcript of an audio file (M4A, MP3, WAV, …). Uses the OpenAI key from the "
                       "secret store, or OPENAI_API_KEY when set."));
    const QCommandLineOption verboseOption(QStringLiteral("verbose"), QStringLiteral("Show the diagnostic log."));
    parser.addOption(verboseOption);
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The recording."));
    if (auto exit = parseArguments(parser, verbName, arguments)) {
        return *exit;
    }
    if (parser.positionalArguments().size() != 1) {
        return usageError(verbName, QStringLiteral("transcribe takes one FILE"));
    }
    if (!parser.isSet(verboseOption)) {
        QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false\n*.info=false"));
    }
    const std::variant<QString, int> text = transcribeFile(parser.positionalArguments().first());
    if (const int *exit = std::get_if<int>(&text)) {
        return *exit;
    }
    printOut(std::get<QString>(text) + QLatin1Char('\n'));
    return exitSuccess;
}

} // namespace

zentrik::cli::Verb zentrik::cli::transcribeVerb()
{
    return { QStringLiteral("transcribe"), QStringLiteral("Print the transcript of an audio file"), runTranscribe };
}
