#pragma once

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QString>
#include <QStringList>

#include <functional>
#include <variant>

namespace zentrik {
class APIManager;
}

namespace zentrik::cli {

class RunHistory;

// One send of the Code Debugger ("debugger") or the Sample Data Generator ("sampleData"),
// printing the reply as it streams (or in one piece for the models that do not stream),
// saved in the history and going on with a stored conversation when the options say so.
int runDevTool(
    APIManager &manager, RunHistory &history, const QString &tool, const QString &suggestion, const QString &text);

// What sets the two developer-tool verbs apart; the rest of their command line is the same.
struct DevToolVerb
{
    QString name; // the verb
    QString tool; // as runDevTool() takes it
    QString description;
    QCommandLineOption choice; // the suggestion or format option
    QString textHelp;
    QString nothingToSend; // the usage error for an empty text
    // The suggestion or format the options name (empty for none), or the exit code after a
    // usage error.
    std::function<std::variant<QString, int>(const QCommandLineParser &parser)> choose;
};

// Parses the verb's arguments, reads the text (or stdin) and runs the tool once.
int runDevToolVerb(const DevToolVerb &verb, const QStringList &arguments);

} // namespace zentrik::cli
