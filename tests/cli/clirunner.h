#pragma once

#include <QByteArray>
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

CliResult runCli(const QStringList &arguments, const QByteArray &input = {},
                 const QProcessEnvironment &extra = {}, int timeoutMs = 30000);
