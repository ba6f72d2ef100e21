// zentrik-cli markdown strip|html [FILE|-]: the plain-text copy of a Markdown reply, or
// the reply rendered as HTML.
#include "console.h"
#include "verb.h"
#include "verbs.h"

#include "render/markdownrenderer.h"
#include "render/markdownstrip.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

using namespace zentrik;
using namespace zentrik::cli;

namespace {

const QString verbName = QStringLiteral("markdown");

QString tr(const char *text)
{
    return QCoreApplication::translate("zentrik-cli markdown", text);
}

struct Input
{
    QString text;
    QString error;
};

Input readInput(const QStringList &positional)
{
    if (positional.size() < 2 || positional.at(1) == QStringLiteral("-")) {
        QString error;
        const std::optional<QByteArray> bytes = readStandardInput(error);
        return { bytes ? QString::fromUtf8(*bytes) : QString(), error };
    }
    const QString &path = positional.at(1);
    if (QFileInfo(path).isDir()) {
        return { {}, tr("cannot read %1: it is a directory").arg(path) };
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return { {}, tr("cannot read %1: %2").arg(path, file.errorString()) };
    }
    return { QString::fromUtf8(file.readAll()), {} };
}

int runMarkdown(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        tr("strip: prints the reply as plain text, the way Copy cleans it up.\n"
           "html: prints the reply rendered as HTML (raw HTML in the reply is left out)."));
    parser.addPositionalArgument(QStringLiteral("ACTION"), tr("strip or html."));
    parser.addPositionalArgument(
        QStringLiteral("FILE"), tr("A Markdown file; - or nothing reads stdin."), QStringLiteral("[FILE|-]"));
    if (const auto done = parseArguments(parser, verbName, arguments)) {
        return *done;
    }
    const QStringList positional = parser.positionalArguments();
    if (positional.isEmpty()) {
        return usageError(verbName, tr("missing the action: strip or html"));
    }
    const QString &action = positional.first();
    if (action != QStringLiteral("strip") && action != QStringLiteral("html")) {
        return usageError(verbName, tr("unknown action \"%1\": use strip or html").arg(action));
    }
    if (positional.size() > 2) {
        return usageError(verbName, tr("expected at most one file, got %1").arg(positional.size() - 1));
    }

    Input input = readInput(positional);
    if (!input.error.isEmpty()) {
        return fail(input.error);
    }
    if (action == QStringLiteral("html")) {
        // Rendered from UTF-8 into UTF-8, so that a reply of many megabytes is never held
        // in UTF-16 beside its rendering.
        QByteArray utf8 = input.text.toUtf8();
        input.text = QString();
        const QByteArray html = MarkdownRenderer::toHtml(QByteArrayView(utf8));
        utf8 = QByteArray();
        Console::current().writeOut(html);
        return exitSuccess;
    }
    QString plain = stripMarkdown(input.text);
    input.text = QString();
    if (!plain.isEmpty()) {
        plain.append(QLatin1Char('\n'));
        QByteArray bytes = plain.toUtf8();
        plain = QString();
        Console::current().writeOut(bytes);
    }
    return exitSuccess;
}

} // namespace

zentrik::cli::Verb zentrik::cli::markdownVerb()
{
    return { QStringLiteral("markdown"), QStringLiteral("a Markdown reply as plain text (strip) or as HTML (html)"),
        runMarkdown };
}
