// zentrik-cli history: the stored conversations — list, show, search, export, import, delete.
#include "verb.h"
#include "verbs.h"

#include "history/historyformat.h"
#include "history/historystore.h"
#include "history/historytools.h"

#include <QDateTime>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

using namespace zentrik;
using namespace zentrik::cli;

namespace {

const QString verbName = QStringLiteral("history");

QString localTime(qint64 ms)
{
    return QDateTime::fromMSecsSinceEpoch(ms).toString(QStringLiteral("yyyy-MM-dd HH:mm"));
}

QJsonObject summaryJson(const ConversationRecord &conversation)
{
    return { { QStringLiteral("number"), conversation.number }, { QStringLiteral("id"), conversation.uid },
        { QStringLiteral("tool"), conversation.tool }, { QStringLiteral("title"), conversation.title },
        { QStringLiteral("created"), historyformat::isoTime(conversation.createdMs) },
        { QStringLiteral("updated"), historyformat::isoTime(conversation.updatedMs) },
        { QStringLiteral("messages"), conversation.messageCount },
        { QStringLiteral("preview"), conversation.preview } };
}

QString summaryLine(const ConversationRecord &conversation)
{
    return QStringLiteral("%1  %2  %3  %4\n")
        .arg(conversation.number, 5)
        .arg(localTime(conversation.updatedMs),
            (conversation.generator ? conversation.generator->assistant : historytool::displayName(conversation.tool))
                .leftJustified(22),
            conversation.title);
}

// The snippet with its matches marked as Markdown bold, for a terminal.
QString markedSnippet(const QString &snippet)
{
    QString marked = snippet;
    marked.replace(SearchHit::matchStart, QStringLiteral("**")).replace(SearchHit::matchEnd, QStringLiteral("**"));
    return marked.simplified();
}

QString plainSnippet(const QString &snippet)
{
    QString plain = snippet;
    plain.remove(SearchHit::matchStart).remove(SearchHit::matchEnd);
    return plain;
}

int printJson(const QJsonValue &value)
{
    const QJsonDocument document = value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject());
    printOut(QString::fromUtf8(document.toJson(QJsonDocument::Indented)));
    return exitSuccess;
}

int list(HistoryStore &store, const QString &tool, bool json)
{
    const QList<ConversationRecord> conversations = store.list(tool, 0);
    if (!store.error().isEmpty()) {
        return fail(store.error());
    }
    if (json) {
        QJsonArray array;
        for (const ConversationRecord &conversation : conversations) {
            array.append(summaryJson(conversation));
        }
        return printJson(array);
    }
    for (const ConversationRecord &conversation : conversations) {
        printOut(summaryLine(conversation));
    }
    return exitSuccess;
}

int search(HistoryStore &store, const QString &text, const QString &tool, bool json)
{
    const QList<SearchHit> hits = store.search(text, tool);
    if (!store.error().isEmpty()) {
        return fail(store.error());
    }
    if (json) {
        QJsonArray array;
        for (const SearchHit &hit : hits) {
            QJsonObject object = summaryJson(hit.conversation);
            object.insert(QStringLiteral("snippet"), plainSnippet(hit.snippet));
            object.insert(QStringLiteral("marked"), markedSnippet(hit.snippet));
            array.append(object);
        }
        return printJson(array);
    }
    for (const SearchHit &hit : hits) {
        printOut(summaryLine(hit.conversation) + QStringLiteral("       %1\n").arg(markedSnippet(hit.snippet)));
    }
    return exitSuccess;
}

int exportTo(HistoryStore &store, const QStringList &references, bool all, const QString &format, const QString &file)
{
    QList<ConversationRecord> conversations;
    if (all) {
        conversations = store.loadAll();
        if (!store.error().isEmpty()) {
            return fail(store.error());
        }
    }
    for (const QString &reference : references) {
        const std::optional<ConversationRecord> one = store.load(reference);
        if (!one) {
            return fail(store.error());
        }
        conversations.append(*one);
    }
    const QByteArray bytes = format == QStringLiteral("json") ? historyformat::toJson(conversations)
                                                              : historyformat::toMarkdown(conversations).toUtf8();
    if (file.isEmpty() || file == QStringLiteral("-")) {
        printOut(QString::fromUtf8(bytes));
        return exitSuccess;
    }
    QSaveFile out(file);
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit()) {
        return fail(QStringLiteral("cannot write %1: %2").arg(file, out.errorString()));
    }
    printErr(QStringLiteral("Exported %1 conversation(s) to %2\n").arg(conversations.size()).arg(file));
    return exitSuccess;
}

int import(HistoryStore &store, const QString &file)
{
    QByteArray bytes;
    if (file == QStringLiteral("-")) {
        QString error;
        const std::optional<QByteArray> input = readStandardInput(error);
        if (!input) {
            return fail(error);
        }
        bytes = *input;
    } else {
        QFile in(file);
        if (!in.open(QIODevice::ReadOnly)) {
            return fail(QStringLiteral("cannot read %1: %2").arg(file, in.errorString()));
        }
        if (in.size() > historyformat::largestImport) {
            return fail(QStringLiteral("%1 is larger than 512 MB").arg(file));
        }
        bytes = in.readAll();
    }
    auto parsed = historyformat::fromJson(bytes);
    if (const auto *problem = std::get_if<QString>(&parsed)) {
        return fail(QStringLiteral("cannot import %1: %2").arg(file, *problem));
    }
    const auto counts = store.import(std::get<QList<ConversationRecord>>(parsed));
    if (!counts) {
        return fail(QStringLiteral("cannot import %1: %2").arg(file, store.error()));
    }
    printOut(QStringLiteral("Imported %1 conversation(s) with %2 new message(s); %3 already there\n")
                 .arg(counts->conversations)
                 .arg(counts->messages)
                 .arg(counts->present));
    return exitSuccess;
}

int runHistory(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("The stored conversations.\n"
                       "  history list [--tool T]                 the newest first, with their numbers\n"
                       "  history show ID                         one conversation (number or id)\n"
                       "  history search TEXT                     the best matches first\n"
                       "  history export (ID...|--all) [-o FILE]  as Markdown, or --format json\n"
                       "  history import FILE                     a JSON export; what is there already is skipped\n"
                       "  history delete ID                       removes one conversation"));
    parser.addPositionalArgument(
        QStringLiteral("action"), QStringLiteral("list, show, search, export, import or delete"));
    const QCommandLineOption jsonOption(QStringLiteral("json"), QStringLiteral("Print JSON."));
    const QCommandLineOption toolOption(QStringLiteral("tool"),
        QStringLiteral("Only this tool's: %1.").arg(historytool::all().join(QStringLiteral(", "))),
        QStringLiteral("T"));
    const QCommandLineOption allOption(QStringLiteral("all"), QStringLiteral("export: every conversation."));
    const QCommandLineOption formatOption(
        QStringLiteral("format"), QStringLiteral("export: md (the default) or json."), QStringLiteral("md|json"));
    const QCommandLineOption outputOption({ QStringLiteral("o"), QStringLiteral("output") },
        QStringLiteral("export: write to FILE."), QStringLiteral("FILE"));
    parser.addOptions({ jsonOption, toolOption, allOption, formatOption, outputOption });
    if (auto exit = parseArguments(parser, verbName, arguments)) {
        return *exit;
    }
    const QStringList args = parser.positionalArguments();
    const QString action = args.value(0);
    const QStringList rest = args.mid(1);
    const QString tool = parser.value(toolOption);
    if (!tool.isEmpty() && !historytool::all().contains(tool)) {
        return usageError(verbName,
            QStringLiteral("unknown tool '%1'; choose one of %2")
                .arg(tool, historytool::all().join(QStringLiteral(", "))));
    }
    const QString format = parser.isSet(formatOption) ? parser.value(formatOption) : QStringLiteral("md");
    if (format != QStringLiteral("md") && format != QStringLiteral("json")) {
        return usageError(verbName, QStringLiteral("--format takes md or json, not '%1'").arg(format));
    }
    const bool wantsOne = action == QStringLiteral("show") || action == QStringLiteral("delete")
        || action == QStringLiteral("search") || action == QStringLiteral("import");
    if (action == QStringLiteral("list") ? !rest.isEmpty()
            : wantsOne                   ? rest.size() != 1
                                         : action != QStringLiteral("export")) {
        return usageError(verbName,
            action.isEmpty() ? QStringLiteral("say list, show, search, export, import or delete")
                             : QStringLiteral("wrong arguments for '%1'").arg(action));
    }
    if (action == QStringLiteral("export") && rest.isEmpty() == !parser.isSet(allOption)) {
        return usageError(verbName, QStringLiteral("export takes conversation IDs or --all"));
    }

    HistoryStore store;
    if (!store.open()) {
        return fail(store.error());
    }
    if (!store.notice().isEmpty()) {
        printErr(QStringLiteral("zentrik-cli: %1\n").arg(store.notice()));
    }
    const bool json = parser.isSet(jsonOption);
    if (action == QStringLiteral("list")) {
        return list(store, tool, json);
    }
    if (action == QStringLiteral("search")) {
        return search(store, rest.first(), tool, json);
    }
    if (action == QStringLiteral("show")) {
        return exportTo(store, rest, false, json ? QStringLiteral("json") : QStringLiteral("md"), QString());
    }
    if (action == QStringLiteral("export")) {
        return exportTo(store, rest, parser.isSet(allOption), format, parser.value(outputOption));
    }
    if (action == QStringLiteral("import")) {
        return import(store, rest.first());
    }
    const std::optional<ConversationRecord> removed = store.take(rest.first());
    if (!removed) {
        return fail(store.error());
    }
    store.removeUnreferencedPictures();
    printOut(QStringLiteral("Deleted conversation %1: %2\n").arg(removed->number).arg(removed->title));
    return exitSuccess;
}

} // namespace

zentrik::cli::Verb zentrik::cli::historyVerb()
{
    return { QStringLiteral("history"),
        QStringLiteral("List, show, search, export, import or delete stored conversations"), runHistory };
}
