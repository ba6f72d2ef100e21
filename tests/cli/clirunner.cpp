#include "clirunner.h"

#include <QProcess>

CliResult runCli(const QStringList &arguments, const QByteArray &input, const QProcessEnvironment &extra,
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
