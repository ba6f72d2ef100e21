#pragma once

#include <QCoreApplication>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>

namespace zentrik::test {

// Runs one test class of this executable (registered with ZENTRIK_CHILD_TEST) in a child
// process with the given environment: a different session bus, a limit on file sizes,
// whatever a process sets up only once.
struct ChildRun
{
    bool finished = false;
    int exitCode = -1;
    QByteArray output;
};

inline ChildRun runTestClassInChild(const QString &className, QProcessEnvironment env, int timeoutMs = 120000)
{
    QProcess child;
    env.remove(QStringLiteral("DISPLAY")); // no X11 autolaunch of a bus
    child.setProcessEnvironment(env);
    child.setProcessChannelMode(QProcess::MergedChannels);
    child.start(QCoreApplication::applicationFilePath(), { QStringLiteral("-class"), className });
    ChildRun run;
    run.finished = child.waitForFinished(timeoutMs) && child.exitStatus() == QProcess::NormalExit;
    if (!run.finished) {
        child.kill();
        child.waitForFinished();
    }
    run.exitCode = child.exitCode();
    run.output = child.readAll();
    return run;
}

} // namespace zentrik::test
