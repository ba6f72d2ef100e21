// zentrik-cli providers: the custom OpenAI-compatible providers (list, add, remove, models)
// and the model servers running on this computer (detect).
#include "clisession.h"
#include "verb.h"
#include "verbs.h"

#include "model/apimanager.h"
#include "settings/apikeycheck.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace zentrik;
using namespace zentrik::cli;

namespace {

const QString verbName = QStringLiteral("providers");

// Runs the event loop until `start` calls the completion it is given.
template<typename Result, typename Start> Result await(Start start)
{
    std::optional<Result> result;
    QEventLoop loop;
    start([&](const Result &outcome) {
        result = outcome;
        loop.quit();
    });
    if (!result) {
        loop.exec();
    }
    return *result;
}

QJsonObject providerJson(const CustomProvider &provider, const QString &transcriber)
{
    QJsonArray models;
    for (const QString &model : provider.models()) {
        models.append(QJsonObject { { QStringLiteral("id"), provider.modelId(model) },
            { QStringLiteral("model"), model }, { QStringLiteral("typed"), provider.typedModels.contains(model) } });
    }
    return { { QStringLiteral("name"), provider.name }, { QStringLiteral("baseUrl"), provider.baseUrl.toString() },
        { QStringLiteral("hasKey"), provider.hasKey }, { QStringLiteral("models"), models },
        { QStringLiteral("transcribes"), provider.name.compare(transcriber, Qt::CaseInsensitive) == 0 } };
}

void printModels(const CustomProvider &provider)
{
    QString out;
    for (const QString &model : provider.models()) {
        out += provider.modelId(model) + QLatin1Char('\n');
    }
    printOut(out);
}

int list(APIManager &manager, bool json)
{
    const auto &providers = manager.customProviders().list();
    if (json) {
        QJsonArray array;
        for (const CustomProvider &provider : providers) {
            array.append(providerJson(provider, manager.transcriptionProvider()));
        }
        printOut(QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Indented)));
        return exitSuccess;
    }
    if (providers.isEmpty()) {
        printErr(QStringLiteral("No custom providers. Add one with: zentrik-cli providers add NAME URL\n"));
        return exitSuccess;
    }
    QString out;
    for (const CustomProvider &provider : providers) {
        out += QStringLiteral("%1 %2 %3 %4\n")
                   .arg(provider.name.leftJustified(16), provider.baseUrl.toString().leftJustified(36),
                       (provider.hasKey ? QStringLiteral("key") : QStringLiteral("no key")).leftJustified(7),
                       QStringLiteral("%1 model(s)").arg(provider.models().size()));
    }
    printOut(out);
    return exitSuccess;
}

// Asks the server for its models; prints them, or says why not. False when it failed.
bool refresh(APIManager &manager, const QString &name)
{
    const CustomProvider *provider = manager.customProviders().find(name);
    const QStringList accounts
        = provider != nullptr && provider->hasKey ? QStringList { provider->keyAccount() } : QStringList();
    if (provider == nullptr || !loadKeys(manager, accounts + manager.networkAccounts())) {
        return false;
    }
    const auto outcome = await<std::variant<QStringList, QString>>(
        [&](auto done) { manager.customProviders().refreshModels(name, &manager, done); });
    if (const auto *error = std::get_if<QString>(&outcome)) {
        fail(*error);
        return false;
    }
    return true;
}

int add(APIManager &manager, const QStringList &args, bool keyFromStdin)
{
    if (args.size() != 3) {
        return usageError(verbName,
            QStringLiteral("providers add takes a name and an address, e.g. "
                           "providers add Ollama http://127.0.0.1:11434/v1"));
    }
    QString key;
    if (keyFromStdin) {
        const std::optional<QString> read = readSecret(QStringLiteral("the key of %1").arg(args.at(1)));
        if (!read) {
            return exitFailure;
        }
        if (read->isEmpty()) {
            return fail(QStringLiteral("no key on stdin; leave out --key-stdin for a provider without a key"));
        }
        key = *read;
    }
    if (!loadKeys(manager, manager.networkAccounts())) {
        return exitFailure;
    }
    const auto error = await<QString>(
        [&](auto done) { manager.customProviders().add(args.at(1), args.at(2), key, &manager, done); });
    if (!error.isEmpty()) {
        return fail(error);
    }
    const CustomProvider *added = manager.customProviders().find(args.at(1));
    printErr(QStringLiteral("Added %1 (%2).\n").arg(added->name, added->baseUrl.toString()));
    const auto models = await<std::variant<QStringList, QString>>(
        [&](auto done) { manager.customProviders().refreshModels(added->name, &manager, done); });
    if (const auto *problem = std::get_if<QString>(&models)) {
        printErr(QStringLiteral("zentrik-cli: %1\nAdd a model by hand with: zentrik-cli providers models \"%2\" --add "
                                "MODEL\n")
                     .arg(*problem, added->name));
        return exitSuccess;
    }
    if (std::get<QStringList>(models).isEmpty()) {
        printErr(QStringLiteral("%1 lists no models; add one with: zentrik-cli providers models \"%1\" --add MODEL\n")
                     .arg(added->name));
    }
    printModels(*manager.customProviders().find(added->name));
    return exitSuccess;
}

int models(APIManager &manager, const QCommandLineParser &parser, const QStringList &args, bool json)
{
    if (args.size() != 2) {
        return usageError(verbName, QStringLiteral("providers models takes one provider name"));
    }
    const QString &name = args.at(1);
    if (manager.customProviders().find(name) == nullptr) {
        return fail(QStringLiteral("There is no provider named \"%1\".").arg(name));
    }
    for (const QString &model : parser.values(QStringLiteral("add"))) {
        if (const QString error = manager.customProviders().addModel(name, model); !error.isEmpty()) {
            return fail(error);
        }
    }
    for (const QString &model : parser.values(QStringLiteral("remove"))) {
        if (const QString error = manager.customProviders().removeModel(name, model); !error.isEmpty()) {
            return fail(error);
        }
    }
    if (parser.isSet(QStringLiteral("refresh")) && !refresh(manager, name)) {
        return exitFailure;
    }
    const CustomProvider &provider = *manager.customProviders().find(name);
    if (json) {
        printOut(QString::fromUtf8(QJsonDocument(
            providerJson(provider, manager.transcriptionProvider()).value(QLatin1String("models")).toArray())
                                       .toJson(QJsonDocument::Indented)));
    } else {
        printModels(provider);
    }
    return exitSuccess;
}

int detect(APIManager &manager, bool json)
{
    LocalServerDetector &detector = *manager.localServers();
    QEventLoop loop;
    QObject::connect(&detector, &LocalServerDetector::finished, &loop, &QEventLoop::quit);
    detector.detect();
    if (detector.detecting()) {
        loop.exec();
    }
    const QList<LocalServerDetector::Server> found = detector.found();
    if (json) {
        QJsonArray array;
        for (const auto &server : found) {
            array.append(QJsonObject { { QStringLiteral("name"), server.name },
                { QStringLiteral("baseUrl"), server.baseUrl.toString() },
                { QStringLiteral("models"), QJsonArray::fromStringList(server.models) },
                { QStringLiteral("added"), !detector.offers().contains(server) } });
        }
        printOut(QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Indented)));
        return exitSuccess;
    }
    if (found.isEmpty()) {
        QStringList ports;
        for (const auto &candidate : detector.candidates()) {
            ports.append(QString::number(candidate.port));
        }
        printErr(QStringLiteral("No model server is running on this computer (looked at ports %1).\n")
                     .arg(ports.join(QStringLiteral(", "))));
        return exitSuccess;
    }
    QString out;
    for (const auto &server : found) {
        const bool added = !detector.offers().contains(server);
        out += QStringLiteral("%1 %2 %3 model(s)%4\n")
                   .arg(server.name.leftJustified(12), server.baseUrl.toString().leftJustified(30))
                   .arg(server.models.size())
                   .arg(added ? QStringLiteral(", added")
                              : QStringLiteral(" - use it: zentrik-cli providers add \"%1\" %2")
                                    .arg(server.name, server.baseUrl.toString()));
    }
    printOut(out);
    return exitSuccess;
}

int runProviders(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Manages OpenAI-compatible providers (Ollama, LM Studio, llama.cpp's server, vLLM, hosted "
                       "ones).\n"
                       "  providers list [--json]\n"
                       "  providers add NAME URL [--key-stdin]   e.g. providers add Ollama http://127.0.0.1:11434/v1\n"
                       "  providers remove NAME\n"
                       "  providers models NAME [--refresh] [--add MODEL] [--remove MODEL] [--json]\n"
                       "  providers detect [--json]              model servers running on this computer\n"
                       "A provider's model is chosen with --model custom:NAME/MODEL."));
    parser.addPositionalArgument(QStringLiteral("action"), QStringLiteral("list, add, remove, models or detect"));
    parser.addPositionalArgument(QStringLiteral("arguments"), QStringLiteral("NAME [URL]"), QStringLiteral("[...]"));
    parser.addOption({ QStringLiteral("json"), QStringLiteral("Machine-readable output.") });
    parser.addOption({ QStringLiteral("key-stdin"), QStringLiteral("add: read the provider's key from stdin.") });
    parser.addOption({ QStringLiteral("refresh"), QStringLiteral("models: ask the server for its models first.") });
    parser.addOption(
        { QStringLiteral("add"), QStringLiteral("models: add a model by hand."), QStringLiteral("MODEL") });
    parser.addOption(
        { QStringLiteral("remove"), QStringLiteral("models: remove a model from the list."), QStringLiteral("MODEL") });
    if (auto exit = parseArguments(parser, verbName, arguments)) {
        return *exit;
    }
    const QStringList args = parser.positionalArguments();
    const QString action = args.value(0);
    const bool json = parser.isSet(QStringLiteral("json"));
    APIManager manager(APIManager::KeyReading::onRequest);
    if (action == QStringLiteral("list") && args.size() == 1) {
        return list(manager, json);
    }
    if (action == QStringLiteral("add")) {
        return add(manager, args, parser.isSet(QStringLiteral("key-stdin")));
    }
    if (action == QStringLiteral("remove")) {
        if (args.size() != 2) {
            return usageError(verbName, QStringLiteral("providers remove takes one provider name"));
        }
        const CustomProvider *provider = manager.customProviders().find(args.at(1));
        const QString name = provider != nullptr ? provider->name : args.at(1);
        if (const QString error = manager.customProviders().remove(args.at(1)); !error.isEmpty()) {
            return fail(error);
        }
        printErr(QStringLiteral("Removed %1.\n").arg(name));
        return exitSuccess;
    }
    if (action == QStringLiteral("models")) {
        return models(manager, parser, args, json);
    }
    if (action == QStringLiteral("detect") && args.size() == 1) {
        return detect(manager, json);
    }
    return usageError(verbName,
        action.isEmpty() ? QStringLiteral("say list, add, remove, models or detect")
                         : QStringLiteral("unknown action or wrong arguments: %1").arg(args.join(QLatin1Char(' '))));
}

} // namespace

zentrik::cli::Verb zentrik::cli::providersVerb()
{
    return { QStringLiteral("providers"),
        QStringLiteral("Add, list and remove OpenAI-compatible providers; find local model servers"), runProviders };
}
