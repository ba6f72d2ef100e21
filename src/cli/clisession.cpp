#include "clisession.h"

#include "console.h"
#include "verb.h"

#include "settings/apikeycheck.h"

#include <QEventLoop>

#include <array>

#include <termios.h>
#include <unistd.h>

namespace zentrik::cli {

namespace {
const std::array<const char *, 3> keyVariables { "OPENAI_API_KEY", "ANTHROPIC_API_KEY", "FAL_KEY" };
} // namespace

bool environmentKeysUsable()
{
    for (const char *variable : keyVariables) {
        if (const std::optional<QString> problem = apiKeyProblem(qEnvironmentVariable(variable))) {
            fail(QStringLiteral("%1 contains %2; an API key is printable ASCII without spaces")
                     .arg(QString::fromLatin1(variable), *problem));
            return false;
        }
    }
    return true;
}

QString secretStoreMessage(int code)
{
    switch (code) {
    case secretNoService:
        return QStringLiteral("no Secret Service is running (start GNOME Keyring or KWallet); keys are never "
                              "written to a plain file");
    case secretTimedOut:
        return QStringLiteral("the Secret Service did not answer within 2 seconds (a keyring prompt may be "
                              "waiting); unlock the keyring and try again");
    case secretLocked:
        return QStringLiteral("the keyring is locked; unlock it and try again");
    case secretNoKeyring:
        return QStringLiteral("the Secret Service has no default keyring to keep keys in; create one (for example "
                              "in Passwords and Keys) and try again");
    default:
        return QStringLiteral("the Secret Service refused the request; check that the keyring works (for example "
                              "in Passwords and Keys) and try again");
    }
}

bool loadKeys(APIManager &manager, const QStringList &accounts)
{
    manager.overrideUserKeys(qEnvironmentVariable(keyVariables[0]), qEnvironmentVariable(keyVariables[1]),
        qEnvironmentVariable(keyVariables[2]));
    manager.readStoredKeys(accounts);
    if (manager.readingKeys()) {
        QEventLoop loop;
        QObject::connect(&manager, &APIManager::settingsReloaded, &loop, &QEventLoop::quit);
        loop.exec();
    }
    // Without any Secret Service there is simply no stored key, and the request says which
    // one is missing; a service that is there but fails must not look like that.
    if (manager.keyStoreResult() != secretSuccess && manager.keyStoreResult() != secretNoService) {
        fail(QStringLiteral("cannot read the stored API key: %1; or give it in the environment (OPENAI_API_KEY, "
                            "ANTHROPIC_API_KEY, FAL_KEY)")
                 .arg(secretStoreMessage(manager.keyStoreResult())));
        return false;
    }
    return true;
}

std::optional<QString> readSecret(const QString &what)
{
    Console &console = Console::current();
    const bool terminal = console.inputIsTerminal();
    termios saved {};
    if (terminal) {
        printErr(QStringLiteral("Enter %1: ").arg(what));
        tcgetattr(STDIN_FILENO, &saved);
        termios silent = saved;
        silent.c_lflag &= ~tcflag_t(ECHO);
        tcsetattr(STDIN_FILENO, TCSANOW, &silent);
    }
    std::optional<QByteArray> bytes;
    QString error;
    if (terminal) {
        bytes = console.readLine();
        tcsetattr(STDIN_FILENO, TCSANOW, &saved);
        printErr(QStringLiteral("\n"));
    } else {
        bytes = console.readAllChecked(error);
    }
    if (!bytes) {
        fail(error.isEmpty() ? QStringLiteral("cannot read %1 from stdin").arg(what) : error);
        return std::nullopt;
    }
    // Only the line break that ends the input goes; anything else is judged as part of it.
    QByteArray secret = *bytes;
    while (secret.endsWith('\n') || secret.endsWith('\r')) {
        secret.chop(1);
    }
    return QString::fromUtf8(secret);
}

std::unique_ptr<APIManager> makeApiManager(const QCommandLineParser &parser, const ModelOptions &options)
{
    if (!environmentKeysUsable()) {
        return nullptr;
    }
    auto manager = std::make_unique<APIManager>(APIManager::KeyReading::onRequest);
    if (parser.isSet(options.model)) {
        manager->setSelectedTextModel(parser.value(options.model));
    }
    if (!loadKeys(*manager, manager->accountsForTextModel(manager->selectedTextModel()))) {
        return nullptr;
    }
    return manager;
}

std::variant<std::optional<SendChoice>, int> parseSendChoice(
    const QCommandLineParser &parser, const SendOption &option, const QString &verb)
{
    if (!parser.isSet(option.option)) {
        return std::optional<SendChoice>();
    }
    const QString value = parser.value(option.option);
    if (value == QStringLiteral("original")) {
        return std::optional(SendChoice::original);
    }
    if (value == QStringLiteral("redacted")) {
        return std::optional(SendChoice::redacted);
    }
    return usageError(verb, QStringLiteral("--send takes original or redacted, not '%1'").arg(value));
}

std::variant<SendChoice, int> resolvePersonalInformation(
    std::optional<SendChoice> preset, const QString &original, const QString &redacted, const QString &verb)
{
    if (preset) {
        return *preset;
    }
    if (!isInteractive()) {
        return usageError(verb,
            QStringLiteral("personal information found; choose what to send with "
                           "--send original or --send redacted"));
    }
    printErr(QStringLiteral("Personal Information Detected\n"
                            "We've detected and redacted some potentially sensitive information in your message.\n\n"
                            "Original Message:\n%1\n\nRedacted Message:\n%2\n\n")
                 .arg(original, redacted));
    Console &in = Console::current();
    for (;;) {
        printErr(QStringLiteral("Send [o]riginal or [r]edacted? "));
        const QString answer = QString::fromUtf8(in.readLine()).trimmed().toLower();
        if (answer == QStringLiteral("o") || answer == QStringLiteral("original")) {
            return SendChoice::original;
        }
        if (answer == QStringLiteral("r") || answer == QStringLiteral("redacted")) {
            return SendChoice::redacted;
        }
        if (in.atEnd()) {
            return usageError(verb, QStringLiteral("no answer; use --send original or --send redacted"));
        }
    }
}

QString firstParagraph(const QString &message)
{
    return message.section(QStringLiteral("\n\n"), 0, 0);
}

void IncrementalPrinter::update(const QString &fullText)
{
    if (fullText.size() <= m_printed) {
        return;
    }
    const QString fresh = fullText.mid(m_printed);
    printOut(fresh);
    m_printed = fullText.size();
    m_endsWithNewline = fresh.endsWith(QLatin1Char('\n'));
}

void IncrementalPrinter::finish()
{
    if (m_printed > 0 && !m_endsWithNewline) {
        printOut(QStringLiteral("\n"));
        m_endsWithNewline = true;
    }
}

} // namespace zentrik::cli
