#pragma once

#include <QByteArray>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>

// Runs the built zentrik-cli with the given arguments and stdin, in the test's environment
// plus the given extra variables, and captures what it prints.
struct CliResult {
    int exitCode = -1;
    bool crashed = false;
    QByteArray out;
    QByteArray err;
};

// The test target defines ZENTRIK_CLI_PATH, the built executable.
inline CliResult runCli(const QStringList &arguments, const QByteArray &input = {},
                        const QProcessEnvironment &extra = {}, int timeoutMs = 30000);


inline CliResult runCli(const QStringList &arguments, const QByteArray &input, const QProcessEnvironment &extra,
                        int timeoutMs)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const QString &key : extra.keys()) {
        env.insert(key, extra.value(key));
    }
    process.setProcessEnvironment(env);
    process.start(QStringLiteral(ZENTRIK_CLI_PATH), arguments);
    CliResult result;
    if (!process.waitForStarted()) {
        return result;
    }
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(timeoutMs)) {
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
