#pragma once

#include "history/historydatabase.h"
#include "history/historytypes.h"

#include <QList>
#include <QString>

#include <optional>

namespace zentrik {

// The conversation history, read and written synchronously on the calling thread through a
// connection of its own: the command line uses it directly, the window through the
// HistoryService's worker thread. Every write is one transaction, so a process killed at
// any moment leaves every message it had saved; a failed write leaves the database as it
// was and error() says why in one line.
class HistoryStore
{
public:
    // The database in the data directory (ZENTRIK_CONFIG_DIR moves it).
    explicit HistoryStore(const QString &path = defaultPath());

    [[nodiscard]] static QString defaultPath();

    // Opens the database (see HistoryDatabase); false when there is none to use.
    bool open();
    [[nodiscard]] bool isOpen() const { return m_db.isOpen(); }
    [[nodiscard]] QString error() const { return m_db.error(); }
    [[nodiscard]] QString notice() const { return m_db.notice(); }
    [[nodiscard]] HistoryDatabase &database() { return m_db; }
    // Where the copies of the image studio's pictures are kept, beside the database.
    [[nodiscard]] QString picturesDirectory() const;

    // Saves one message of the conversation, creating the conversation (its title, PDF,
    // generator or image run as given) when it is new; saving a message again (a stopped
    // reply, say) replaces its text and ending.
    bool saveMessage(const ConversationRecord &conversation, const StoredMessage &message);
    // Writes the picture under the conversation's id; the path, or nothing.
    std::optional<QString> keepPicture(const QString &conversationUid, const QByteArray &png);
    bool removeMessages(const QString &conversationUid, const QStringList &messageUids);
    bool rename(const QString &reference, const QString &title);
    // Deletes the conversation and hands it back whole, to put back with restore().
    std::optional<ConversationRecord> take(const QString &reference);
    // Deletes every conversation; how many there were.
    std::optional<int> removeAll();
    // Removes kept pictures that no conversation refers to any more.
    void removeUnreferencedPictures();

    struct ImportCounts
    {
        int conversations = 0; // added
        int messages = 0; // added, to new or to existing conversations
        int present = 0; // conversations that were there already
    };
    // Adds the conversations in one transaction: one whose id is present gains only the
    // messages it lacks, so importing the same file twice adds nothing. keepNumbers gives
    // each its old number (undoing a deletion).
    std::optional<ImportCounts> import(const QList<ConversationRecord> &conversations, bool keepNumbers = false);

    // The newest conversations first, of one tool or of all (tool empty); without messages.
    [[nodiscard]] QList<ConversationRecord> list(const QString &tool = {}, int limit = 200);
    // A conversation with its messages, by number ("12"), id or a unique start of the id.
    [[nodiscard]] std::optional<ConversationRecord> load(const QString &reference);
    [[nodiscard]] QList<ConversationRecord> loadAll();
    // The id of the conversation a reference names; nothing (error() set) when none or several.
    [[nodiscard]] std::optional<QString> resolve(const QString &reference);
    // The best matches first, one hit per conversation. Words match whole, the last one also
    // as the start of a word, in any order; searches user and assistant text, the words as
    // typed, generator fields, image prompts and titles.
    [[nodiscard]] QList<SearchHit> search(const QString &text, const QString &tool = {}, int limit = 50);
    [[nodiscard]] std::optional<int> count();

private:
    [[nodiscard]] std::optional<qint64> upsertConversation(const ConversationRecord &conversation, bool keepNumber);
    bool insertMessage(qint64 conversationId, const StoredMessage &message, bool replace);
    [[nodiscard]] QList<ConversationRecord> readConversations(const QString &where, const QVariantList &values);
    [[nodiscard]] QList<StoredMessage> readMessages(qint64 conversationId);

    HistoryDatabase m_db;
};

} // namespace zentrik
