// zentrik-cli transcribe: speech to text through OpenAI, as the voice notes screen does.
#include "model/apimanager.h"
#include "verb.h"

#include <QEventLoop>
#include <QFile>
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
    const QString path = parser.positionalArguments().first();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return fail(QStringLiteral("cannot read %1: %2").arg(path, file.errorString()));
    }
    file.close();

    APIManager manager;
    manager.overrideUserKeys(qEnvironmentVariable("OPENAI_API_KEY"), {}, {});
    QEventLoop loop;
    std::optional<TextResult> result;
    manager.transcribe(path, &loop, [&](const TextResult &outcome) {
        result = outcome;
        loop.quit();
    });
    loop.exec();
    if (const auto *error = std::get_if<APIError>(&*result)) {
        return fail(error->message());
    }
    printOut(std::get<QString>(*result) + QLatin1Char('\n'));
    return exitSuccess;
}

} // namespace

ZENTRIK_CLI_VERB(
    transcribe, QStringLiteral("transcribe"), QStringLiteral("Print the transcript of an audio file"), runTranscribe)
