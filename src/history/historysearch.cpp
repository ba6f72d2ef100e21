// HistoryStore: full-text search.
#include "history/historysnippet.h"
#include "history/historystore.h"

#include <QHash>
#include <QSqlQuery>

#include <algorithm>

namespace zentrik {

namespace {

// Ranking reads every match of every word (bm25 counts the documents each word is in), which
// for a word in most messages means most of the index. Such a word says little about
// relevance anyway: when more than this many messages match, the newest of them come first
// instead, found by walking the index from its newest entry and stopping there.
constexpr int rankingLimit = 2000;

QString integerList(const QList<qint64> &values)
{
    QStringList list;
    for (const qint64 value : values) {
        list.append(QString::number(value));
    }
    return list.join(QLatin1Char(','));
}

} // namespace

QList<SearchHit> HistoryStore::search(const QString &text, const QString &tool, int limit)
{
    const SearchWords words = searchWords(text);
    if (words.isEmpty() || limit <= 0) {
        return {};
    }
    const QString match = words.ftsQuery();
    const QString toolFilter = QStringLiteral(" (coalesce(?, '') = '' OR c.tool = ?)");
    struct Found
    {
        qint64 conversation = 0;
        qint64 message = 0; // 0: only the title matched
        double order = 0; // lower first
    };
    QList<Found> found;
    QSqlQuery query(m_db.connection());
    query.setForwardOnly(true);

    QList<qint64> newest;
    if (!m_db.run(query,
            QStringLiteral("SELECT rowid FROM messages_fts WHERE messages_fts MATCH ? ORDER BY rowid DESC LIMIT ?"),
            { match, rankingLimit })) {
        return {};
    }
    while (query.next()) {
        newest.append(query.value(0).toLongLong());
    }
    const bool tooMany = newest.size() == rankingLimit;
    // Per conversation, the row of its best match: min() takes the other columns from the
    // row it picks. The newest matches are already known by their row ids.
    const bool ran = tooMany
        ? m_db.run(query,
            QStringLiteral("SELECT m.conversation_id, max(m.id), -max(m.id) FROM messages m"
                           " JOIN conversations c ON c.id = m.conversation_id WHERE m.id IN (%1) AND")
                    .arg(integerList(newest))
                + toolFilter + QStringLiteral(" GROUP BY m.conversation_id ORDER BY 3 LIMIT ?"),
            { tool, tool, limit })
        : m_db.run(query,
            QStringLiteral("SELECT m.conversation_id, f.rowid, min(f.rank) FROM messages_fts f"
                           " JOIN messages m ON m.id = f.rowid JOIN conversations c ON c.id = m.conversation_id"
                           " WHERE messages_fts MATCH ? AND")
                + toolFilter + QStringLiteral(" GROUP BY m.conversation_id ORDER BY 3 LIMIT ?"),
            { match, tool, tool, limit });
    if (!ran) {
        return {};
    }
    QHash<qint64, qsizetype> index;
    while (query.next()) {
        index.insert(query.value(0).toLongLong(), found.size());
        found.append({ query.value(0).toLongLong(), query.value(1).toLongLong(), query.value(2).toDouble() });
    }
    // Titles rank with the messages; below the newest matches when those are the order.
    if (!m_db.run(query,
            QStringLiteral("SELECT c.id, f.rank FROM titles_fts f JOIN conversations c ON c.id = f.rowid"
                           " WHERE titles_fts MATCH ? AND")
                + toolFilter + QStringLiteral(" ORDER BY f.rank LIMIT ?"),
            { match, tool, tool, limit })) {
        return {};
    }
    const double titleOffset = tooMany ? 1e18 : 0;
    while (query.next()) {
        const qint64 id = query.value(0).toLongLong();
        const double order = query.value(1).toDouble() + titleOffset;
        if (const auto it = index.constFind(id); it != index.constEnd()) {
            found[*it].order = std::min(found[*it].order, order); // the message stays the passage
        } else {
            found.append({ id, 0, order });
        }
    }
    std::stable_sort(found.begin(), found.end(), [](const Found &a, const Found &b) { return a.order < b.order; });
    found.resize(std::min<qsizetype>(found.size(), limit));

    QList<qint64> conversations;
    QList<qint64> messages;
    for (const Found &hit : found) {
        conversations.append(hit.conversation);
        messages.append(hit.message);
    }
    QHash<qint64, ConversationRecord> records;
    for (ConversationRecord &record :
        readConversations(QStringLiteral("WHERE c.id IN (%1)").arg(integerList(conversations)), {})) {
        records.emplace(record.number, std::move(record));
    }
    QHash<qint64, QString> passages;
    if (!m_db.run(query,
            QStringLiteral("SELECT id, content, typed FROM messages WHERE id IN (%1)").arg(integerList(messages)))) {
        return {};
    }
    while (query.next()) {
        QString passage = markedPassage(query.value(1).toString(), words);
        passages.insert(
            query.value(0).toLongLong(), passage.isEmpty() ? markedPassage(query.value(2).toString(), words) : passage);
    }
    QList<SearchHit> hits;
    for (const Found &hit : found) {
        const auto record = records.constFind(hit.conversation);
        if (record == records.constEnd()) {
            continue;
        }
        const QString passage = passages.value(hit.message);
        hits.append({ *record, passage.isEmpty() ? markedPassage(record->title, words) : passage });
    }
    return hits;
}

} // namespace zentrik
