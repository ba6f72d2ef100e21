// zentrik-cli notes: the voice notes the window keeps, listed, shown, added from an audio
// file, retitled, deleted and searched.
#include "transcribefile.h"
#include "verb.h"
#include "verbs.h"
#include "voice/voicenotemanager.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QLoggingCategory>

using namespace zentrik;
using namespace zentrik::cli;

namespace {

const QString verbName = QStringLiteral("notes");

QString dateText(const QDateTime &date)
{
    return date.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm"));
}

void printList(const QList<VoiceNote> &notes, bool json)
{
    if (json) {
        QJsonArray array;
        for (const VoiceNote &note : notes) {
            array.append(note.toJson());
        }
        printOut(QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Indented)));
        return;
    }
    for (const VoiceNote &note : notes) {
        printOut(QStringLiteral("%1  %2  %3\n").arg(note.id, dateText(note.date), note.title));
    }
}

void printNote(const VoiceNote &note)
{
    printOut(QStringLiteral("Title: %1\nDate: %2\nID: %3\n\n%4\n")
                 .arg(note.title, dateText(note.date), note.id, note.transcription));
}

// The note an id names: the whole id, or the start of exactly one id (ignoring case).
std::variant<VoiceNote, int> findNote(const VoiceNoteManager &manager, const QString &id)
{
    if (const std::optional<VoiceNote> exact = manager.note(id)) {
        return *exact;
    }
    QList<VoiceNote> candidates;
    for (const VoiceNote &note : manager.notes()) {
        if (!id.isEmpty() && note.id.startsWith(id, Qt::CaseInsensitive)) {
            candidates.append(note);
        }
    }
    if (candidates.size() == 1) {
        return candidates.first();
    }
    if (candidates.size() > 1) {
        return fail(
            QStringLiteral("'%1' is the start of %2 note ids; give more of the id").arg(id).arg(candidates.size()));
    }
    return fail(QStringLiteral("no voice note has the id '%1'").arg(id));
}

int runNotes(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("The voice notes of the Voice Notes screen, newest first.\n\n"
                       "  list [--json]                    every note: id, date, title\n"
                       "  show ID                          one note with its transcription\n"
                       "  add FILE                         transcribes FILE into a new note\n"
                       "  edit ID [--title T] [--transcription TEXT|-]\n"
                       "  delete ID\n"
                       "  search TEXT [--json]             notes whose title or transcription holds TEXT (any case)\n\n"
                       "ID may be the start of a note's id, as long as it names one note."));
    const QCommandLineOption jsonOption(QStringLiteral("json"), QStringLiteral("List as JSON (list, search)."));
    const QCommandLineOption titleOption(
        QStringLiteral("title"), QStringLiteral("The new title (edit)."), QStringLiteral("T"));
    const QCommandLineOption transcriptionOption(QStringLiteral("transcription"),
        QStringLiteral("The new transcription; - reads stdin (edit)."), QStringLiteral("TEXT"));
    const QCommandLineOption verboseOption(QStringLiteral("verbose"), QStringLiteral("Show the diagnostic log."));
    parser.addOptions({ jsonOption, titleOption, transcriptionOption, verboseOption });
    parser.addPositionalArgument(QStringLiteral("ACTION"), QStringLiteral("list, show, add, edit, delete or search."));
    parser.addPositionalArgument(
        QStringLiteral("ARGUMENT"), QStringLiteral("ID, FILE or TEXT."), QStringLiteral("[ARGUMENT]"));
    if (auto exit = parseArguments(parser, verbName, arguments)) {
        return *exit;
    }
    const QStringList positional = parser.positionalArguments();
    if (positional.isEmpty()) {
        return usageError(verbName, QStringLiteral("say what to do: list, show, add, edit, delete or search"));
    }
    const QString &action = positional.first();
    static const QStringList actions = { QStringLiteral("list"), QStringLiteral("show"), QStringLiteral("add"),
        QStringLiteral("edit"), QStringLiteral("delete"), QStringLiteral("search") };
    if (!actions.contains(action)) {
        return usageError(verbName, QStringLiteral("unknown action '%1'").arg(action));
    }
    const bool lists = action == QStringLiteral("list") || action == QStringLiteral("search");
    if (parser.isSet(jsonOption) && !lists) {
        return usageError(verbName, QStringLiteral("--json goes with list and search"));
    }
    const bool edits = action == QStringLiteral("edit");
    if ((parser.isSet(titleOption) || parser.isSet(transcriptionOption)) && !edits) {
        return usageError(verbName, QStringLiteral("--title and --transcription go with edit"));
    }
    const qsizetype wanted = action == QStringLiteral("list") ? 1 : 2;
    if (positional.size() != wanted) {
        return usageError(verbName,
            wanted == 1 ? QStringLiteral("list takes no argument")
                        : QStringLiteral("%1 takes one %2")
                              .arg(action,
                                  action == QStringLiteral("add")          ? QStringLiteral("FILE")
                                      : action == QStringLiteral("search") ? QStringLiteral("TEXT")
                                                                           : QStringLiteral("ID")));
    }
    if (edits && !parser.isSet(titleOption) && !parser.isSet(transcriptionOption)) {
        return usageError(verbName, QStringLiteral("edit needs --title, --transcription or both"));
    }
    if (edits && parser.isSet(titleOption) && parser.value(titleOption).trimmed().isEmpty()) {
        return usageError(verbName, QStringLiteral("a note needs a title"));
    }
    if (!parser.isSet(verboseOption)) {
        QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false\n*.info=false\nzentrik.voice.warning=false"));
    }

    VoiceNoteManager manager;
    if (!manager.unreadableBackupKey().isEmpty()) {
        printErr(QStringLiteral("zentrik-cli: warning: the stored voice notes could not be read in full; the stored "
                                "list was kept unchanged under \"%1\" in %2\n")
                     .arg(manager.unreadableBackupKey(), manager.storageFileName()));
    }
    const QString argument = positional.value(1);

    if (action == QStringLiteral("list")) {
        printList(manager.notes(), parser.isSet(jsonOption));
        return exitSuccess;
    }
    if (action == QStringLiteral("search")) {
        const std::optional<QString> text = argument == QStringLiteral("-") ? textArgument({}) : argument;
        if (!text) {
            return exitFailure;
        }
        printList(manager.search(*text), parser.isSet(jsonOption));
        return exitSuccess;
    }
    if (action == QStringLiteral("add")) {
        const std::variant<QString, int> text = transcribeFile(argument);
        if (const int *exit = std::get_if<int>(&text)) {
            return *exit;
        }
        const VoiceNote note = VoiceNote::create(QStringLiteral("New Voice Note"), std::get<QString>(text));
        if (!manager.add(note)) {
            return fail(QStringLiteral("the note was not saved: %1").arg(manager.writeError()));
        }
        printNote(note);
        return exitSuccess;
    }

    const std::variant<VoiceNote, int> found = findNote(manager, argument);
    if (const int *exit = std::get_if<int>(&found)) {
        return *exit;
    }
    VoiceNote note = std::get<VoiceNote>(found);
    if (action == QStringLiteral("show")) {
        printNote(note);
        return exitSuccess;
    }
    if (action == QStringLiteral("delete")) {
        if (!manager.remove(note.id)) {
            return fail(manager.writeError().isEmpty()
                    ? QStringLiteral("no voice note has the id '%1'").arg(note.id)
                    : QStringLiteral("the note was not deleted: %1").arg(manager.writeError()));
        }
        return exitSuccess;
    }
    if (parser.isSet(titleOption)) {
        note.title = parser.value(titleOption);
    }
    if (parser.isSet(transcriptionOption)) {
        const QString value = parser.value(transcriptionOption);
        const std::optional<QString> text = value == QStringLiteral("-") ? textArgument({}) : value;
        if (!text) {
            return exitFailure;
        }
        note.transcription = *text;
    }
    if (!manager.replace(note)) {
        return fail(manager.writeError().isEmpty()
                ? QStringLiteral("no voice note has the id '%1'").arg(note.id)
                : QStringLiteral("the note was not changed: %1").arg(manager.writeError()));
    }
    printNote(note);
    return exitSuccess;
}

} // namespace

zentrik::cli::Verb zentrik::cli::notesVerb()
{
    return { QStringLiteral("notes"),
        QStringLiteral("Voice notes: list, show, add FILE (transcribed), edit, delete, search"), runNotes };
}
