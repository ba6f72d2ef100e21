#include "clisession.h"

#include "console.h"
#include "verb.h"

namespace zentrik::cli {

std::unique_ptr<APIManager> makeApiManager(const QCommandLineParser &parser, const ModelOptions &options)
{
    auto manager = std::make_unique<APIManager>();
    manager->overrideUserKeys(qEnvironmentVariable("OPENAI_API_KEY"), qEnvironmentVariable("ANTHROPIC_API_KEY"),
                              qEnvironmentVariable("FAL_KEY"));
    if (parser.isSet(options.model)) {
        manager->setSelectedTextModel(parser.value(options.model));
    }
    return manager;
}

std::variant<std::optional<SendChoice>, int> parseSendChoice(const QCommandLineParser &parser,
                                                             const SendOption &option, const QString &verb)
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

std::variant<SendChoice, int> resolvePersonalInformation(std::optional<SendChoice> preset, const QString &original,
                                                         const QString &redacted, const QString &verb)
{
    if (preset) {
        return *preset;
    }
    if (!isInteractive()) {
        return usageError(verb, QStringLiteral("personal information found; choose what to send with "
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
