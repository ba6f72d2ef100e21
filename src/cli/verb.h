#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <vector>

namespace zentrik::cli {

// Exit codes shared by every verb.
inline constexpr int exitSuccess = 0;
inline constexpr int exitFailure = 1;
inline constexpr int exitUsage = 2;

struct Verb
{
    QString name;
    QString summary;
    // Receives the arguments after the verb's name; returns the process exit code.
    std::function<int(const QStringList &arguments)> run;
};

// Every verb, in the order --help lists them.
[[nodiscard]] const std::vector<Verb> &verbs();

// Runs the command line after the program's name: a verb with its arguments, --help or
// --version. Returns the exit code.
int run(QStringList arguments);

// Results go to stdout, diagnostics to stderr; both are UTF-8.
void printOut(const QString &text);
void printErr(const QString &text);

// Prints the one-line message on stderr and returns exitFailure.
int fail(const QString &message);
// Prints the message and a pointer to --help on stderr and returns exitUsage.
int usageError(const QString &verb, const QString &message);

// Parses the verb's arguments. Handles --help itself (prints it and yields exitSuccess)
// and unknown options (yields exitUsage); returns std::nullopt when the verb may go on.
std::optional<int> parseArguments(QCommandLineParser &parser, const QString &verb, const QStringList &arguments);

// The text argument of a verb: the given text, or stdin when it is "-" or absent. A stdin
// that cannot be read (a directory, a closed descriptor) is not taken as empty input: the
// reason is printed as one line and the answer is std::nullopt (exit with exitFailure).
[[nodiscard]] std::optional<QString> textArgument(const QStringList &positional, int index = 0);

// Everything on stdin; std::nullopt (with error set to one line) when it cannot be read.
[[nodiscard]] std::optional<QByteArray> readStandardInput(QString &error);

// True when stdin and stderr are a terminal (the CLI may ask the user).
[[nodiscard]] bool isInteractive();

} // namespace zentrik::cli
