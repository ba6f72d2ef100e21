#pragma once

#include <QList>
#include <QMap>
#include <QString>

#include <optional>

namespace zentrik {

enum class MessageRole { user, assistant };
// How a reply ended: whole, stopped by the user, or cut off by a failure. The last two keep
// the text that had arrived.
enum class MessageEnding { complete, stopped, failed };

// One message as the history keeps it.
struct StoredMessage
{
    QString uid; // stable across export and import
    MessageRole role = MessageRole::user;
    QString text; // as the conversation showed it
    QString typed; // as the user typed it (the same as text for replies)
    QString sent; // as it went to the model (redacted when the user chose so)
    QString model; // the model id that was selected
    qint64 timeMs = 0; // milliseconds since the epoch, UTC
    MessageEnding ending = MessageEnding::complete;

    friend bool operator==(const StoredMessage &, const StoredMessage &) = default;
};

// A form-driven assistant's run: which assistant, and the form as it was filled in.
struct GeneratorRun
{
    QString family;
    QString assistant;
    QMap<QString, QString> fields;

    friend bool operator==(const GeneratorRun &, const GeneratorRun &) = default;
};

// An image studio run: the image model and the copy of the picture the history keeps.
struct ImageRun
{
    QString model;
    QString picturePath;

    friend bool operator==(const ImageRun &, const ImageRun &) = default;
};

// One conversation: a chat of one tool, a generator run or an image run. Lists carry the
// conversation without its messages (messageCount and preview instead).
struct ConversationRecord
{
    qint64 number = 0; // the short id the command line shows; 0 until stored
    QString uid; // stable across export and import
    QString tool; // one of the names in historytools.h
    QString title;
    qint64 createdMs = 0;
    qint64 updatedMs = 0;
    QString pdfPath; // PDF chats: the document, and the SHA-256 of its bytes (hex)
    QString pdfSha256;
    std::optional<GeneratorRun> generator;
    std::optional<ImageRun> image;
    QList<StoredMessage> messages;
    int messageCount = 0;
    QString preview; // the first line of the first message

    // What two stores holding the same conversation agree on (not the local number).
    [[nodiscard]] bool sameContent(const ConversationRecord &other) const;
};

// A conversation found by a search, with the best matching passage. The matched words in
// the snippet lie between matchStart and matchEnd.
struct SearchHit
{
    ConversationRecord conversation;
    QString snippet;
    static constexpr QChar matchStart { 0xE000 };
    static constexpr QChar matchEnd { 0xE001 };
};

// A fresh stable id: a UUID without braces.
[[nodiscard]] QString newHistoryUid();
// A conversation's title made from its first message: the first line, blanks collapsed,
// cut at a word near 60 characters with an ellipsis.
[[nodiscard]] QString titleFromText(const QString &text);
[[nodiscard]] QString firstLine(const QString &text, qsizetype longest = 200);

} // namespace zentrik
