#include "verb.h"

#include "console.h"

namespace zentrik::cli {

void printOut(const QString &text)
{
    Console::current().writeOut(text.toUtf8());
}

void printErr(const QString &text)
{
    Console::current().writeErr(text.toUtf8());
}

int fail(const QString &message)
{
    printErr(QStringLiteral("zentrik-cli: %1\n").arg(message));
    return exitFailure;
}

int usageError(const QString &verb, const QString &message)
{
    const QString help
        = verb.isEmpty() ? QStringLiteral("zentrik-cli --help") : QStringLiteral("zentrik-cli %1 --help").arg(verb);
    printErr(QStringLiteral("zentrik-cli: %1 (see %2)\n").arg(message, help));
    return exitUsage;
}

std::optional<int> parseArguments(QCommandLineParser &parser, const QString &verb, const QStringList &arguments)
{
    const QCommandLineOption helpOption(
        { QStringLiteral("h"), QStringLiteral("help") }, QStringLiteral("Show this help."));
    parser.addOption(helpOption);
    QStringList withProgram = arguments;
    withProgram.prepend(QStringLiteral("zentrik-cli %1").arg(verb));
    if (!parser.parse(withProgram)) {
        return usageError(verb, parser.errorText());
    }
    if (parser.isSet(helpOption)) {
        // helpText() names the binary's path; name the verb instead.
        QString help = parser.helpText();
        const qsizetype lineEnd = help.indexOf(QLatin1Char('\n'));
        const QString firstLine = help.left(lineEnd);
        const qsizetype optionsAt = firstLine.indexOf(QStringLiteral(" [options]"));
        if (firstLine.startsWith(QStringLiteral("Usage: ")) && optionsAt > 0) {
            help.replace(0, optionsAt, QStringLiteral("Usage: zentrik-cli %1").arg(verb));
        }
        printOut(help);
        return exitSuccess;
    }
    return std::nullopt;
}

std::optional<QByteArray> readStandardInput(QString &error)
{
    return Console::current().readAllChecked(error);
}

std::optional<QString> textArgument(const QStringList &positional, int index)
{
    if (index < positional.size() && positional.at(index) != QStringLiteral("-")) {
        return positional.at(index);
    }
    QString error;
    const std::optional<QByteArray> bytes = readStandardInput(error);
    if (!bytes) {
        fail(error);
        return std::nullopt;
    }
    return QString::fromUtf8(*bytes);
}

bool isInteractive()
{
    const Console &console = Console::current();
    return console.inputIsTerminal() && console.errorIsTerminal();
}

} // namespace zentrik::cli
