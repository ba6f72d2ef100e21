#pragma once

#include "cli/console.h"
#include "cli/verb.h"
#include "support/environment.h"
#include "support/fakeprovider.h"

#include <QByteArray>
#include <QDir>
#include <QLoggingCategory>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <optional>
#include <utility>
#include <vector>

// Runs zentrik-cli's verbs for the tests: in the test's own process through the library (the
// usual way: fast, and a failure shows the test's stack), or as the built program for what
// only a real process shows: exit codes through main, a pipe on stdin, another session bus,
// several processes at once.

struct CliResult
{
    int exitCode = -1;
    bool crashed = false;
    QByteArray out;
    QByteArray err;
};

// The same, decoded, for tests that compare text.
struct CliText
{
    int exitCode = -1;
    QString out;
    QString err;

    CliText() = default;
    CliText(const CliResult &result)
        : exitCode(result.crashed ? -1 : result.exitCode)
        , out(QString::fromUtf8(result.out))
        , err(QString::fromUtf8(result.err))
    { }
};

namespace zentrik::test {

// Feeds a verb its stdin from memory and keeps what it prints.
class CapturedConsole final : public cli::Console
{
public:
    explicit CapturedConsole(QByteArray input)
        : m_input(std::move(input))
    { }

    void writeOut(const QByteArray &bytes) override { out += bytes; }
    void writeErr(const QByteArray &bytes) override { err += bytes; }
    QByteArray readAll() override
    {
        const QByteArray rest = m_input.mid(m_read);
        m_read = m_input.size();
        return rest;
    }
    QByteArray readLine() override
    {
        const qsizetype lineEnd = m_input.indexOf('\n', m_read);
        const qsizetype next = lineEnd < 0 ? m_input.size() : lineEnd + 1;
        const QByteArray line = m_input.mid(m_read, next - m_read);
        m_read = next;
        return line;
    }
    bool atEnd() override { return m_read >= m_input.size(); }
    bool inputIsTerminal() const override { return terminal; }
    bool errorIsTerminal() const override { return terminal; }

    QByteArray out;
    QByteArray err;
    // Whether the verb believes it talks to a person at a terminal.
    bool terminal = false;

private:
    QByteArray m_input;
    qsizetype m_read = 0;
};

} // namespace zentrik::test

// Runs the command line in this process on `console`, with the variables of `extra` set for
// the run, and in `workingDirectory` when given.
inline CliResult runCli(const QStringList &arguments, zentrik::test::CapturedConsole &console,
    const QProcessEnvironment &extra = {}, const QString &workingDirectory = {})
{
    const zentrik::test::ScopedEnvironment environment(extra);
    const QString previousDirectory = QDir::currentPath();
    if (!workingDirectory.isEmpty() && !QDir::setCurrent(workingDirectory)) {
        return {};
    }
    CliResult result;
    {
        const zentrik::cli::ScopedConsole installed(console);
        result.exitCode = zentrik::cli::run(arguments);
    }
    QDir::setCurrent(previousDirectory);
    // Some verbs quiet the log for the rest of the program; the test goes on with its own.
    QLoggingCategory::setFilterRules(QString());
    result.out = console.out;
    result.err = console.err;
    return result;
}

// The same with `input` as stdin, not a terminal.
inline CliResult runCli(const QStringList &arguments, const QByteArray &input = {},
    const QProcessEnvironment &extra = {}, const QString &workingDirectory = {})
{
    zentrik::test::CapturedConsole console(input);
    return runCli(arguments, console, extra, workingDirectory);
}

// Runs the built program (the test target defines ZENTRIK_CLI_PATH) in the test's environment
// plus `extra`, and captures what it prints.
#ifdef ZENTRIK_CLI_PATH
// `inChild` runs in the child before the program starts (a limit, another user).
inline CliResult runCliProcess(const QStringList &arguments, const QByteArray &input = {},
    const QProcessEnvironment &extra = {}, const QString &workingDirectory = {},
    const std::function<void()> &inChild = {})
{
    QProcess process;
    if (inChild) {
        process.setChildProcessModifier(inChild);
    }
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const QString &key : extra.keys()) {
        env.insert(key, extra.value(key));
    }
    process.setProcessEnvironment(env);
    process.setWorkingDirectory(workingDirectory);
    process.start(QStringLiteral(ZENTRIK_CLI_PATH), arguments);
    CliResult result;
    if (!process.waitForStarted()) {
        return result;
    }
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(30000)) {
        process.kill();
        process.waitForFinished();
        return result;
    }
    result.crashed = process.exitStatus() != QProcess::NormalExit;
    result.exitCode = process.exitCode();
    result.out = process.readAllStandardOutput();
    result.err = process.readAllStandardError();
    return result;
}
#endif

namespace zentrik::test {

// What the verb tests share, for the fixture's lifetime: a scratch folder holding the
// preferences (config/) and the temporary files, one fake provider behind every provider
// address, and the provider keys in the environment (empty unless given), so that neither
// the user's settings nor the test process's own variables reach a run.
class CliFixture
{
public:
    using Keys = QList<std::pair<QByteArray, QString>>;

    explicit CliFixture(const Keys &keys = {})
    {
        m_environment.set("ZENTRIK_CONFIG_DIR", dir.filePath(QStringLiteral("config")));
        m_environment.set("TMPDIR", dir.path());
        for (const char *address :
            { "ZENTRIK_OPENAI_BASE_URL", "ZENTRIK_ANTHROPIC_BASE_URL", "ZENTRIK_OPENROUTER_BASE_URL",
                "ZENTRIK_TOGETHER_BASE_URL", "ZENTRIK_FAL_QUEUE_URL", "ZENTRIK_FAL_REST_URL" }) {
            m_environment.set(address, fake.baseUrl().toString());
        }
        for (const char *key : { "OPENAI_API_KEY", "ANTHROPIC_API_KEY", "FAL_KEY", "TOGETHER_API_KEY" }) {
            QString value;
            for (const auto &[name, given] : keys) {
                if (name == key) {
                    value = given;
                }
            }
            m_environment.set(key, value);
        }
    }

    QTemporaryDir dir;
    FakeProvider fake;

private:
    ScopedEnvironment m_environment;
};

} // namespace zentrik::test
