#include "clisession.h"
#include "console.h"
#include "model/apimanager.h"
#include "settings/apikeycheck.h"
#include "settings/secretstore.h"
#include "verb.h"
#include "verbs.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace zentrik;
using namespace zentrik::cli;

namespace {

const QString verbName = QStringLiteral("keys");

struct ProviderKey
{
    QString provider;
    const char *account;
    const char *environment;
};

const std::array<ProviderKey, 3> providerKeys { {
    { QStringLiteral("openai"), APIManager::openAIAccount, "OPENAI_API_KEY" },
    { QStringLiteral("anthropic"), APIManager::claudeAccount, "ANTHROPIC_API_KEY" },
    { QStringLiteral("fal"), APIManager::falAccount, "FAL_KEY" },
} };

const ProviderKey *findProvider(const QString &name)
{
    for (const ProviderKey &key : providerKeys) {
        if (key.provider == name) {
            return &key;
        }
    }
    return nullptr;
}

QString failureMessage(const SecretStore &store, const QString &what)
{
    return QStringLiteral("%1: %2").arg(what, secretStoreMessage(store.lastResultCode()));
}

int runKeys(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Manages the API keys kept in the desktop's secret store.\n"
                       "  keys set PROVIDER      reads the key from stdin (never echoed, never printed)\n"
                       "  keys delete PROVIDER\n"
                       "  keys status            which keys are set\n"
                       "PROVIDER is openai, anthropic or fal."));
    parser.addPositionalArgument(QStringLiteral("action"), QStringLiteral("set, delete or status"));
    parser.addPositionalArgument(
        QStringLiteral("provider"), QStringLiteral("openai, anthropic or fal"), QStringLiteral("[provider]"));
    const QCommandLineOption jsonOption(QStringLiteral("json"), QStringLiteral("Machine-readable status."));
    parser.addOption(jsonOption);
    if (auto exit = parseArguments(parser, verbName, arguments)) {
        return *exit;
    }
    const QStringList args = parser.positionalArguments();
    const QString action = args.value(0);
    SecretStore store;
    // Each action is one operation with one time limit, however many items it touches.
    store.setDeadline(SecretStore::Clock::now() + std::chrono::milliseconds(SecretStore::timeoutMs));

    if (action == QStringLiteral("status")) {
        if (args.size() != 1) {
            return usageError(verbName, QStringLiteral("keys status takes no provider"));
        }
        QJsonArray entries;
        QString text;
        for (const ProviderKey &key : providerKeys) {
            const bool fromEnvironment = !qEnvironmentVariableIsEmpty(key.environment);
            // A key the environment gives wins; the store need not be asked about it.
            const bool stored = !fromEnvironment && store.get(QString::fromLatin1(key.account)).has_value();
            if (!fromEnvironment && !stored && store.lastResultCode() != secretNotFound) {
                return fail(failureMessage(store, QStringLiteral("cannot read the %1 key").arg(key.provider)));
            }
            QString source = fromEnvironment ? QString::fromLatin1(key.environment)
                                             : (stored ? QStringLiteral("secret store") : QString());
            entries.append(QJsonObject { { QStringLiteral("provider"), key.provider },
                { QStringLiteral("set"), stored || fromEnvironment }, { QStringLiteral("source"), source } });
            text += QStringLiteral("%1 %2\n").arg(key.provider.leftJustified(10),
                source.isEmpty() ? QStringLiteral("not set") : QStringLiteral("set (%1)").arg(source));
        }
        printOut(parser.isSet(jsonOption) ? QString::fromUtf8(QJsonDocument(entries).toJson()) : text);
        return exitSuccess;
    }

    if (action != QStringLiteral("set") && action != QStringLiteral("delete")) {
        return usageError(verbName,
            action.isEmpty() ? QStringLiteral("say set, delete or status")
                             : QStringLiteral("unknown action '%1'").arg(action));
    }
    if (args.size() != 2) {
        return usageError(verbName, QStringLiteral("keys %1 takes one provider: openai, anthropic or fal").arg(action));
    }
    const ProviderKey *key = findProvider(args.at(1));
    if (!key) {
        return usageError(
            verbName, QStringLiteral("unknown provider '%1'; use openai, anthropic or fal").arg(args.at(1)));
    }
    const QString account = QString::fromLatin1(key->account);

    if (action == QStringLiteral("delete")) {
        if (store.remove(account)) {
            printErr(QStringLiteral("Deleted the %1 key.\n").arg(key->provider));
            return exitSuccess;
        }
        if (store.lastResultCode() == secretNotFound) {
            printErr(QStringLiteral("No %1 key was stored.\n").arg(key->provider));
            return exitSuccess;
        }
        return fail(failureMessage(store, QStringLiteral("could not delete the %1 key").arg(key->provider)));
    }

    const std::optional<QString> input = readSecret(QStringLiteral("the %1 key").arg(key->provider));
    if (!input) {
        return exitFailure;
    }
    const QString &value = *input;
    if (value.isEmpty()) {
        return fail(
            QStringLiteral("no key on stdin; to remove a key use: zentrik-cli keys delete %1").arg(key->provider));
    }
    if (const std::optional<QString> problem = apiKeyProblem(value)) {
        return fail(QStringLiteral("the %1 key contains %2; an API key is printable ASCII without spaces (nothing was "
                                   "stored)")
                        .arg(key->provider, *problem));
    }
    if (!store.set(value, account)) {
        return fail(failureMessage(store, QStringLiteral("could not store the %1 key").arg(key->provider)));
    }
    printErr(QStringLiteral("Stored the %1 key.\n").arg(key->provider));
    return exitSuccess;
}

} // namespace

zentrik::cli::Verb zentrik::cli::keysVerb()
{
    return { QStringLiteral("keys"), QStringLiteral("Set, delete or show the status of the API keys"), runKeys };
}
