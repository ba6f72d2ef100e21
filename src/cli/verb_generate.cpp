// zentrik-cli generate TITLE --field LABEL=VALUE ...: runs a form-driven assistant as its
// screen does and streams the reply to stdout.
#include "clisession.h"
#include "formarguments.h"
#include "runhistory.h"
#include "verb.h"
#include "verbs.h"

#include "history/historytools.h"
#include "tools/generatorviewmodel.h"

using namespace zentrik;
using namespace zentrik::cli;

namespace {

const QString verbName = QStringLiteral("generate");

int runGenerate(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Runs a form-driven assistant with the given field values and streams the reply. "
                       "'zentrik-cli assistants' lists the titles and their fields. With --continue, a stored run's "
                       "assistant and fields are the starting point: TITLE may be left out and --field changes "
                       "single values."));
    const QCommandLineOption fieldOption(QStringLiteral("field"),
        QStringLiteral("A field's value; repeat for more fields."), QStringLiteral("LABEL=VALUE"));
    parser.addOption(fieldOption);
    const ModelOptions modelOptions;
    modelOptions.addTo(parser);
    const SendOption sendOption;
    sendOption.addTo(parser);
    const HistoryOptions historyOptions;
    historyOptions.addTo(parser);
    parser.addPositionalArgument(QStringLiteral("TITLE"), QStringLiteral("The assistant's title."));
    if (auto exit = parseArguments(parser, verbName, arguments)) {
        return *exit;
    }
    const QStringList positional = parser.positionalArguments();
    auto created = RunHistory::create(parser, historyOptions, verbName);
    if (const int *exit = std::get_if<int>(&created)) {
        return *exit;
    }
    RunHistory &history = *std::get<std::unique_ptr<RunHistory>>(created);
    const auto continued = history.conversationToContinue(historytool::generator);
    if (const int *exit = std::get_if<int>(&continued)) {
        return *exit;
    }
    const auto &reference = std::get<std::optional<QString>>(continued);
    if (positional.size() > 1 || (positional.isEmpty() && !reference)) {
        return usageError(verbName, QStringLiteral("give exactly one assistant title (quote a title with spaces)"));
    }
    GeneratorViewModel generator;
    generator.setHistory(&history.service());
    if (reference) {
        std::optional<bool> opened;
        QEventLoop loop;
        QObject::connect(&generator, &GeneratorViewModel::runOpened, &loop, [&](bool succeeded) {
            opened = succeeded;
            loop.quit();
        });
        generator.openRun(*reference);
        if (!opened) {
            loop.exec();
        }
        if (!*opened) {
            return fail(generator.errorMessage());
        }
    }
    const QString title = positional.isEmpty() ? generator.selectedTitle() : positional.first();
    const auto parsed = parseFormArguments(verbName, title, parser.values(fieldOption));
    if (const int *exit = std::get_if<int>(&parsed)) {
        return *exit;
    }
    const auto &form = std::get<FormSelection>(parsed);
    const auto send = parseSendChoice(parser, sendOption, verbName);
    if (const int *exit = std::get_if<int>(&send)) {
        return *exit;
    }
    const std::unique_ptr<APIManager> manager = makeApiManager(parser, modelOptions);
    if (!manager) {
        return exitFailure;
    }
    generator.setApiManager(manager.get());
    generator.setFamily(form.family->identifier());
    generator.selectAssistant(form.assistant->title);
    for (auto it = form.inputs.cbegin(); it != form.inputs.cend(); ++it) {
        generator.setInput(it.key(), it.value());
    }

    IncrementalPrinter printer;
    QObject::connect(
        &generator, &GeneratorViewModel::outputChanged, &generator, [&] { printer.update(generator.output()); });
    generator.generate();
    if (auto exit = settlePersonalInformation(generator, std::get<std::optional<SendChoice>>(send), verbName)) {
        return *exit;
    }
    waitWhile(generator, &GeneratorViewModel::isGeneratingChanged, [&] { return generator.isGenerating(); });
    printer.update(generator.output());
    printer.finish();
    if (!generator.errorMessage().isEmpty()) {
        return fail(generator.errorMessage());
    }
    return exitSuccess;
}

} // namespace

zentrik::cli::Verb zentrik::cli::generateVerb()
{
    return { QStringLiteral("generate"), QStringLiteral("Run a form-driven assistant and stream its reply"),
        runGenerate };
}
