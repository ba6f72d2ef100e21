#include "console.h"
#include "model/apimanager.h"
#include "settings/secretstore.h"
#include "verb.h"
#include "verbs.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <termios.h>
#include <unistd.h>

using namespace zentrik;
using namespace zentrik::cli;

namespace {

const QString verbName = QStringLiteral("keys");

struct ProviderKey {
    QString provider;
    const char *account;
    const char *environment;
};

const std::array<ProviderKey, 3> providerKeys{{
    {QStringLiteral("openai"), APIManager::openAIAccount, "OPENAI_API_KEY"},
    {QStringLiteral("anthropic"), APIManager::claudeAccount, "ANTHROPIC_API_KEY"},
    {QStringLiteral("fal"), APIManager::falAccount, "FAL_KEY"},
}};

const ProviderKey *findProvider(const QString &name)
{
    for (const ProviderKey &key : providerKeys) {
        if (key.provider == name) {
            return &key;
        }
    }
    return nullptr;
}

QString noServiceMessage()
{
    return QStringLiteral("no Secret Service is available (start GNOME Keyring or KWallet); keys are never written to a plain file");
}

QString failureMessage(const SecretStore &store, const QString &what)
{
    switch (store.lastResultCode()) {
    case secretNoService:
        return noServiceMessage();
    case secretLocked:
        return QStringLiteral("%1: the keyring is locked; unlock it and try again").arg(what);
    default:
        return QStringLiteral("%1: the secret store refused (code %2)").arg(what).arg(store.lastResultCode());
    }
}

// Reads the key without echoing it when stdin is a terminal; a trailing line break is not
// part of the key.
QString readKey(const QString &provider)
{
    Console &console = Console::current();
    const bool terminal = console.inputIsTerminal();
    termios saved{};
    if (terminal) {
        printErr(QStringLiteral("Enter the %1 key: ").arg(provider));
        tcgetattr(STDIN_FILENO, &saved);
        termios silent = saved;
        silent.c_lflag &= ~tcflag_t(ECHO);
        tcsetattr(STDIN_FILENO, TCSANOW, &silent);
    }
    const QByteArray bytes = terminal ? console.readLine() : console.readAll();
    if (terminal) {
        tcsetattr(STDIN_FILENO, TCSANOW, &saved);
        printErr(QStringLiteral("\n"));
    }
    return QString::fromUtf8(bytes).trimmed();
}

int runKeys(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Manages the API keys kept in the desktop's secret store.\n"
        "  keys set PROVIDER      reads the key from stdin (never echoed, never printed)\n"
        "  keys delete PROVIDER\n"
        "  keys status            which keys are set\n"
        "PROVIDER is openai, anthropic or fal."));
    parser.addPositionalArgument(QStringLiteral("action"), QStringLiteral("set, delete or status"));
    parser.addPositionalArgument(QStringLiteral("provider"), QStringLiteral("openai, anthropic or fal"), QStringLiteral("[provider]"));
    const QCommandLineOption jsonOption(QStringLiteral("json"), QStringLiteral("Machine-readable status."));
    parser.addOption(jsonOption);
    if (auto exit = parseArguments(parser, verbName, arguments)) {
        return *exit;
    }
    const QStringList args = parser.positionalArguments();
    const QString action = args.value(0);
    SecretStore store;

    if (action == QStringLiteral("status")) {
        if (args.size() != 1) {
            return usageError(verbName, QStringLiteral("keys status takes no provider"));
        }
        QJsonArray entries;
        QString text;
        for (const ProviderKey &key : providerKeys) {
            const bool stored = store.get(QString::fromLatin1(key.account)).has_value();
            if (store.lastResultCode() == secretNoService) {
                return fail(noServiceMessage());
            }
            const bool fromEnvironment = !qEnvironmentVariableIsEmpty(key.environment);
            QString source = fromEnvironment ? QString::fromLatin1(key.environment)
                                             : (stored ? QStringLiteral("secret store") : QString());
            entries.append(QJsonObject{{QStringLiteral("provider"), key.provider},
                                       {QStringLiteral("set"), stored || fromEnvironment},
                                       {QStringLiteral("source"), source}});
            text += QStringLiteral("%1 %2\n").arg(key.provider.leftJustified(10),
                                                   source.isEmpty() ? QStringLiteral("not set")
                                                                    : QStringLiteral("set (%1)").arg(source));
        }
        printOut(parser.isSet(jsonOption) ? QString::fromUtf8(QJsonDocument(entries).toJson()) : text);
        return exitSuccess;
    }

    if (action != QStringLiteral("set") && action != QStringLiteral("delete")) {
        return usageError(verbName, action.isEmpty() ? QStringLiteral("say set, delete or status")
                                                     : QStringLiteral("unknown action '%1'").arg(action));
    }
    if (args.size() != 2) {
        return usageError(verbName, QStringLiteral("keys %1 takes one provider: openai, anthropic or fal").arg(action));
    }
    const ProviderKey *key = findProvider(args.at(1));
    if (!key) {
        return usageError(verbName, QStringLiteral("unknown provider '%1'; use openai, anthropic or fal").arg(args.at(1)));
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

    const QString value = readKey(key->provider);
    if (value.isEmpty()) {
        return fail(QStringLiteral("no key on stdin; to remove a key use: zentrik-cli keys delete %1").arg(key->provider));
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
