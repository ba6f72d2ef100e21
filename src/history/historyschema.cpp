#include "history/historyschema.h"

namespace zentrik::historyschema {

namespace {

// Version 1: conversations and what they hold. Times are milliseconds since the epoch
// (UTC). A message's typed and sent texts are NULL when they equal its text, which they
// mostly do. AUTOINCREMENT keeps a deleted conversation's number from being given to a new
// one, so that undoing a deletion can put it back under the number the user saw.
const QStringList version1 {
    QStringLiteral("CREATE TABLE conversations ("
                   " id INTEGER PRIMARY KEY AUTOINCREMENT,"
                   " uid TEXT NOT NULL UNIQUE,"
                   " tool TEXT NOT NULL,"
                   " title TEXT NOT NULL,"
                   " created_at INTEGER NOT NULL,"
                   " updated_at INTEGER NOT NULL,"
                   " pdf_path TEXT,"
                   " pdf_sha256 TEXT)"),
    QStringLiteral("CREATE INDEX conversations_by_time ON conversations (updated_at DESC)"),
    QStringLiteral("CREATE INDEX conversations_by_tool ON conversations (tool, updated_at DESC)"),
    QStringLiteral("CREATE TABLE messages ("
                   " id INTEGER PRIMARY KEY AUTOINCREMENT,"
                   " uid TEXT NOT NULL UNIQUE,"
                   " conversation_id INTEGER NOT NULL REFERENCES conversations (id) ON DELETE CASCADE,"
                   " role TEXT NOT NULL CHECK (role IN ('user', 'assistant')),"
                   " content TEXT NOT NULL,"
                   " typed TEXT,"
                   " sent TEXT,"
                   " model TEXT NOT NULL DEFAULT '',"
                   " created_at INTEGER NOT NULL,"
                   " partial INTEGER NOT NULL DEFAULT 0 CHECK (partial IN (0, 1, 2)))"),
    QStringLiteral("CREATE INDEX messages_by_conversation ON messages (conversation_id, id)"),
    QStringLiteral("CREATE TABLE generator_runs ("
                   " conversation_id INTEGER PRIMARY KEY REFERENCES conversations (id) ON DELETE CASCADE,"
                   " family TEXT NOT NULL,"
                   " assistant TEXT NOT NULL,"
                   " fields TEXT NOT NULL)"),
    QStringLiteral("CREATE TABLE image_runs ("
                   " conversation_id INTEGER PRIMARY KEY REFERENCES conversations (id) ON DELETE CASCADE,"
                   " model TEXT NOT NULL,"
                   " picture_path TEXT NOT NULL)"),
};

// Version 2: full-text search. The FTS5 tables hold only the index; the text stays in
// messages and conversations (external content), and triggers keep the index in step with
// every insert, update and delete. The index of the rows already there is built once.
const QStringList version2 {
    QStringLiteral("CREATE VIRTUAL TABLE messages_fts USING fts5 (content, typed,"
                   " content = 'messages', content_rowid = 'id', tokenize = 'unicode61 remove_diacritics 2')"),
    QStringLiteral("CREATE TRIGGER messages_fts_insert AFTER INSERT ON messages BEGIN"
                   " INSERT INTO messages_fts (rowid, content, typed) VALUES (new.id, new.content, new.typed);"
                   " END"),
    QStringLiteral("CREATE TRIGGER messages_fts_delete AFTER DELETE ON messages BEGIN"
                   " INSERT INTO messages_fts (messages_fts, rowid, content, typed)"
                   " VALUES ('delete', old.id, old.content, old.typed);"
                   " END"),
    QStringLiteral("CREATE TRIGGER messages_fts_update AFTER UPDATE OF content, typed ON messages BEGIN"
                   " INSERT INTO messages_fts (messages_fts, rowid, content, typed)"
                   " VALUES ('delete', old.id, old.content, old.typed);"
                   " INSERT INTO messages_fts (rowid, content, typed) VALUES (new.id, new.content, new.typed);"
                   " END"),
    QStringLiteral("CREATE VIRTUAL TABLE titles_fts USING fts5 (title,"
                   " content = 'conversations', content_rowid = 'id', tokenize = 'unicode61 remove_diacritics 2')"),
    QStringLiteral("CREATE TRIGGER titles_fts_insert AFTER INSERT ON conversations BEGIN"
                   " INSERT INTO titles_fts (rowid, title) VALUES (new.id, new.title);"
                   " END"),
    QStringLiteral("CREATE TRIGGER titles_fts_delete AFTER DELETE ON conversations BEGIN"
                   " INSERT INTO titles_fts (titles_fts, rowid, title) VALUES ('delete', old.id, old.title);"
                   " END"),
    QStringLiteral("CREATE TRIGGER titles_fts_update AFTER UPDATE OF title ON conversations BEGIN"
                   " INSERT INTO titles_fts (titles_fts, rowid, title) VALUES ('delete', old.id, old.title);"
                   " INSERT INTO titles_fts (rowid, title) VALUES (new.id, new.title);"
                   " END"),
    QStringLiteral("INSERT INTO messages_fts (messages_fts) VALUES ('rebuild')"),
    QStringLiteral("INSERT INTO titles_fts (titles_fts) VALUES ('rebuild')"),
};

} // namespace

const QList<QStringList> &migrations()
{
    static const QList<QStringList> steps { version1, version2 };
    return steps;
}

int currentVersion()
{
    return int(migrations().size());
}

} // namespace zentrik::historyschema
