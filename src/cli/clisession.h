#pragma once

#include "model/apimanager.h"
#include "privacy/piialertviewmodel.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QEventLoop>
#include <QStringList>

#include <memory>
#include <optional>
#include <variant>

namespace zentrik::cli {

// The options every verb that talks to a model shares.
struct ModelOptions
{
    QCommandLineOption model { QStringLiteral("model"), QStringLiteral("Use this text model for this run."),
        QStringLiteral("ID") };
    void addTo(QCommandLineParser &parser) const { parser.addOption(model); }
};

// An APIManager for one run: the stored key of the chosen text model's provider, unless
// OPENAI_API_KEY, ANTHROPIC_API_KEY or FAL_KEY gives it (then the Secret Service is not
// asked at all), and the --model choice when given. Null, with the reason printed, when a
// key in the environment cannot be a key or the Secret Service failed to give a needed one.
[[nodiscard]] std::unique_ptr<APIManager> makeApiManager(const QCommandLineParser &parser, const ModelOptions &options);

// False, with the reason printed, when OPENAI_API_KEY, ANTHROPIC_API_KEY or FAL_KEY holds
// something that cannot be a key.
[[nodiscard]] bool environmentKeysUsable();
// Gives the manager the keys the environment sets, then reads those of these accounts that
// it does not from the Secret Service, waiting at most the key service's time limit. False,
// with the reason printed, when the Secret Service could not give them.
[[nodiscard]] bool loadKeys(APIManager &manager, const QStringList &accounts);
// Reads a secret from stdin (`what` names it: "the openai key"), without echoing it when
// stdin is a terminal; a trailing line break is not part of it. std::nullopt, with the
// reason printed, when stdin cannot be read.
[[nodiscard]] std::optional<QString> readSecret(const QString &what);
// One line about a failed Secret Service call, for the command line.
[[nodiscard]] QString secretStoreMessage(int code);

// What to send when the privacy guard changed the text.
enum class SendChoice { original, redacted };

struct SendOption
{
    QCommandLineOption option { QStringLiteral("send"),
        QStringLiteral("When personal information is found, send the original or the "
                       "redacted text without asking."),
        QStringLiteral("original|redacted") };
    void addTo(QCommandLineParser &parser) const { parser.addOption(option); }
};

// The --send value; std::nullopt when absent. A bad value yields the usage exit code.
[[nodiscard]] std::variant<std::optional<SendChoice>, int> parseSendChoice(
    const QCommandLineParser &parser, const SendOption &option, const QString &verb);

// The choice for a text in which personal information was found: --send when given,
// otherwise the user's answer on a terminal. Without either it prints why and gives the
// usage exit code.
[[nodiscard]] std::variant<SendChoice, int> resolvePersonalInformation(
    std::optional<SendChoice> preset, const QString &original, const QString &redacted, const QString &verb);

// Answers a tool's privacy dialog, if its send opened it, with the user's choice, which
// sends. Gives the exit code when the run ends here instead.
template<typename Tool>
[[nodiscard]] std::optional<int> settlePersonalInformation(
    Tool &tool, std::optional<SendChoice> preset, const QString &verb)
{
    const PiiAlertViewModel *alert = tool.piiAlertVM();
    if (!alert->showAlert()) {
        return std::nullopt;
    }
    const auto choice = resolvePersonalInformation(preset, alert->originalMessage(), alert->redactedMessage(), verb);
    if (const int *exit = std::get_if<int>(&choice)) {
        return *exit;
    }
    std::get<SendChoice>(choice) == SendChoice::original ? tool.sendOriginal() : tool.sendRedacted();
    return std::nullopt;
}

// Runs the event loop while `busy()` holds, looking again each time `object` emits `changed`:
// how a verb waits for a reply.
template<typename Object, typename Signal, typename Busy>
void waitWhile(const Object &object, Signal changed, Busy busy)
{
    if (!busy()) {
        return;
    }
    QEventLoop loop;
    QObject::connect(&object, changed, &loop, [&] {
        if (!busy()) {
            loop.quit();
        }
    });
    loop.exec();
}

// A conversational tool's error without the connection tip the window adds below it, so
// that the CLI's failure stays one line.
[[nodiscard]] QString firstParagraph(const QString &message);

// Prints a growing text as it grows: only what was not printed yet.
class IncrementalPrinter
{
public:
    void update(const QString &fullText);
    // Ends the output with a line break if it does not have one.
    void finish();

private:
    qsizetype m_printed = 0;
    bool m_endsWithNewline = true;
};

} // namespace zentrik::cli
