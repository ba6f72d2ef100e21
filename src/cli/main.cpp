#include "buildconfig.h"
#include "verb.h"

#include <QCoreApplication>

using namespace zentrik::cli;

namespace {
void printUsage()
{
    QString text = QStringLiteral("Usage: zentrik-cli VERB [options] [arguments]\n\n"
                                  "Zentrik's assistants from a shell. Verbs:\n");
    for (const Verb &verb : verbs()) {
        text += QStringLiteral("  %1%2\n").arg(verb.name.leftJustified(14), verb.summary);
    }
    text += QStringLiteral("\nEvery verb takes --help. Exit codes: 0 success, 1 failure, 2 usage error.\n");
    printOut(text);
}
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Zentrik"));
    QCoreApplication::setApplicationName(QStringLiteral("Zentrik"));
    QCoreApplication::setApplicationVersion(QString::fromLatin1(zentrik::build::version));

    QStringList arguments = QCoreApplication::arguments();
    arguments.removeFirst();
    if (arguments.isEmpty()) {
        printUsage();
        return exitUsage;
    }
    const QString first = arguments.takeFirst();
    if (first == QStringLiteral("--help") || first == QStringLiteral("-h") || first == QStringLiteral("help")) {
        printUsage();
        return exitSuccess;
    }
    if (first == QStringLiteral("--version") || first == QStringLiteral("-v")) {
        printOut(QStringLiteral("zentrik-cli %1\n").arg(QCoreApplication::applicationVersion()));
        return exitSuccess;
    }
    for (const Verb &verb : verbs()) {
        if (verb.name == first) {
            return verb.run(arguments);
        }
    }
    return usageError(QString(), QStringLiteral("unknown verb '%1'").arg(first));
}
