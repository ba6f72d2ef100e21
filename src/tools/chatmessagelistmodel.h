#pragma once

#include <QAbstractListModel>
#include <QString>
#include <QtQmlIntegration>

#include <memory>
#include <vector>

namespace zentrik {

class MarkdownModel;

// One message of a conversation: AskMeMessage, DebuggerMessage and the sample-data
// generator's messages share this shape.
struct ChatMessageRecord
{
    enum class Role { user, assistant };

    QString id; // a fresh UUID string per message
    Role role = Role::user;
    QString content;
    // A reply the user stopped before it was complete.
    bool stopped = false;
    // A reply cut off by a failure, kept with the text that had arrived.
    bool failed = false;
    // What the user typed and what went to the model, when they differ from the content
    // shown (a suggestion's prompt before it, a redacted copy); empty when they do not.
    QString typed;
    QString sent;
    QString model; // the model that was selected
    qint64 timeMs = 0; // when it was shown, in milliseconds since the epoch

    [[nodiscard]] const QString &typedText() const { return typed.isEmpty() ? content : typed; }
    [[nodiscard]] const QString &sentText() const { return sent.isEmpty() ? content : sent; }
};
using AskMeMessage = ChatMessageRecord;
using DebuggerMessage = ChatMessageRecord;

// The messages of one tool's conversation for its QML list. Assistant messages also carry
// their Markdown blocks for display, and whether they match the divider rule pattern.
class ChatMessageListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by a chat screen's view model")
    Q_PROPERTY(int count READ count NOTIFY countChanged FINAL)

public:
    enum Role {
        IdRole = Qt::UserRole + 1,
        RoleRole, // "user" or "assistant"
        ContentRole, // the text as shown (and copied)
        BlocksRole, // MarkdownModel* of an assistant message; null for user messages
        IsRuleRole, // an assistant reply that the divider pattern matches
        SymbolRole, // "person.circle.fill" or "brain.head.profile"
        IsStoppedRole, // a reply the user stopped part-way
    };
    Q_ENUM(Role)

    explicit ChatMessageListModel(QObject *parent = nullptr);
    ~ChatMessageListModel() override;

    [[nodiscard]] int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    // Appends a message with a fresh id and returns that id.
    QString append(ChatMessageRecord::Role role, const QString &content, bool stopped = false);
    // Appends the message, giving it an id and the current time where it has none; returns
    // the message as appended.
    const ChatMessageRecord &append(ChatMessageRecord record);
    // Replaces every message (a conversation opened from the history).
    void setRecords(const QList<ChatMessageRecord> &records);
    // Removes the messages from `row` to the end.
    void removeFrom(int row);
    void clear();

    [[nodiscard]] int count() const { return int(m_entries.size()); }
    [[nodiscard]] const ChatMessageRecord &at(int row) const { return m_entries.at(size_t(row)).record; }

Q_SIGNALS:
    void countChanged();

private:
    struct Entry
    {
        ChatMessageRecord record;
        std::unique_ptr<MarkdownModel> blocks;
        bool isRule = false;
    };
    [[nodiscard]] static Entry makeEntry(ChatMessageRecord record);
    std::vector<Entry> m_entries;
};

} // namespace zentrik
