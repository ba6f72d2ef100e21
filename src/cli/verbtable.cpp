#include "buildconfig.h"
#include "verb.h"
#include "verbs.h"

namespace zentrik::cli {

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

const std::vector<Verb> &verbs()
{
    static const std::vector<Verb> table {
        askVerb(),
        assistantsVerb(),
        configVerb(),
        debugVerb(),
        generateVerb(),
        historyVerb(),
        imageVerb(),
        keysVerb(),
        markdownVerb(),
        modelsVerb(),
        notesVerb(),
        pdfVerb(),
        promptVerb(),
        providersVerb(),
        redactVerb(),
        sampleDataVerb(),
        transcribeVerb(),
    };
    return table;
}

int run(QStringList arguments)
{
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
        printOut(QStringLiteral("zentrik-cli %1\n").arg(QString::fromLatin1(build::version)));
        return exitSuccess;
    }
    for (const Verb &verb : verbs()) {
        if (verb.name == first) {
            return verb.run(arguments);
        }
    }
    return usageError(QString(), QStringLiteral("unknown verb '%1'").arg(first));
}

} // namespace zentrik::cli
