#pragma once

#include "history/historytypes.h"

#include <QAtomicInteger>
#include <QObject>
#include <QPointer>
#include <QThread>
#include <QUrl>
#include <QtQmlIntegration>

#include <functional>
#include <memory>
#include <optional>

namespace zentrik {

class HistoryStore;

// The window's way to the conversation history: every read and write runs on a worker
// thread that owns its own connection, so the GUI thread never waits for the disk.
// Requests run in the order they were made; each completion runs once on this object's
// thread, never after its context object is gone. Nothing opens until start() (the window
// calls it after its first frame); requests made before then wait for it.
//
// It also holds the two conversation settings: whether history is kept at all, and whether
// a send carries the earlier messages of its conversation.
//
// In the window it is the QML singleton HistoryService, made by the engine on first use
// (which opens nothing) and deleted with it.
class HistoryService : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool keepHistory READ keepHistory WRITE setKeepHistory NOTIFY keepHistoryChanged FINAL)
    Q_PROPERTY(bool sendEarlierMessages READ sendEarlierMessages WRITE setSendEarlierMessages NOTIFY
            sendEarlierMessagesChanged FINAL)
    // One line for the user when the history could not be opened or written, or an unreadable
    // file was moved aside; empty otherwise.
    Q_PROPERTY(QString notice READ notice NOTIFY noticeChanged FINAL)
    // The number of stored conversations as of the last refreshCount(); -1 before.
    Q_PROPERTY(int conversationCount READ conversationCount NOTIFY conversationCountChanged FINAL)
    Q_PROPERTY(bool isBusy READ isBusy NOTIFY isBusyChanged FINAL)

public:
    explicit HistoryService(QObject *parent = nullptr);
    // A database elsewhere than the data directory (tests, benchmarks).
    explicit HistoryService(QString databasePath, QObject *parent = nullptr);
    ~HistoryService() override;

    static constexpr const char *keepHistoryPreference = "keepConversationHistory";
    static constexpr const char *sendEarlierPreference = "sendEarlierMessages";

    [[nodiscard]] bool keepHistory() const;
    void setKeepHistory(bool keep);
    [[nodiscard]] bool sendEarlierMessages() const;
    void setSendEarlierMessages(bool send);
    // Whether saves are written: history is kept and this run did not opt out.
    [[nodiscard]] bool isSaving() const { return keepHistory() && !m_savingSuspended; }
    // This run writes nothing, whatever the setting says (the command line's --no-save).
    void suspendSaving() { m_savingSuspended = true; }
    [[nodiscard]] QString notice() const { return m_notice; }
    [[nodiscard]] int conversationCount() const { return m_conversationCount; }
    [[nodiscard]] bool isBusy() const { return m_busyOperations > 0; }

    // Starts the worker, which opens the database.
    Q_INVOKABLE void start();
    // Waits until every request made so far has run (the command line before it exits).
    bool waitForIdle(int timeoutMs = 30000);

    // Writes, in order, each in its own transaction; nothing when saving is off.
    void saveMessage(const ConversationRecord &conversation, const StoredMessage &message);
    // Keeps a copy of the picture beside the database and saves the run with its path.
    void saveImageRun(const ConversationRecord &conversation, const StoredMessage &prompt, const QByteArray &png);
    void removeMessages(const QString &conversationUid, const QStringList &messageUids);
    Q_INVOKABLE void rename(const QString &reference, const QString &title);

    using ListCompletion = std::function<void(const QList<ConversationRecord> &conversations)>;
    using SearchCompletion = std::function<void(const QList<SearchHit> &hits)>;
    // The conversation, or std::nullopt and the reason.
    using LoadCompletion
        = std::function<void(const std::optional<ConversationRecord> &conversation, const QString &error)>;
    using RestoreCompletion = std::function<void(bool restored)>;

    void list(const QString &tool, int limit, QObject *context, ListCompletion completion);
    void search(const QString &text, const QString &tool, int limit, QObject *context, SearchCompletion completion);
    void load(const QString &reference, QObject *context, LoadCompletion completion);
    // Deletes the conversation and hands it over whole, so that it can be restored.
    void take(const QString &reference, QObject *context, LoadCompletion completion);
    void restore(const QList<ConversationRecord> &conversations, QObject *context, RestoreCompletion completion);
    // Removes the kept pictures that no conversation refers to any more.
    void removeUnusedPictures();

    Q_INVOKABLE void refreshCount();
    // Deletes every conversation; operationFinished() says how many went.
    Q_INVOKABLE void deleteAll();
    // format: "md" or "json". The file is replaced only once the export is complete.
    Q_INVOKABLE void exportConversation(const QString &reference, const QString &format, const QUrl &file);
    Q_INVOKABLE void exportAll(const QString &format, const QUrl &file);
    Q_INVOKABLE void importFile(const QUrl &file);
    // Where an export is offered to go: the documents folder (the home folder without one),
    // under a name made from the title ("zentrik-history" for an empty one), with the
    // format's suffix.
    [[nodiscard]] Q_INVOKABLE static QUrl suggestedExportFile(const QString &title, const QString &format);

Q_SIGNALS:
    void keepHistoryChanged();
    void sendEarlierMessagesChanged();
    void noticeChanged();
    void conversationCountChanged();
    void isBusyChanged();
    // Conversations were added, changed or removed through this service.
    void changed();
    // These conversations are gone (all of them when the list is empty).
    void conversationsRemoved(const QStringList &uids, bool all);
    // An export, import or delete-all ended; the message is one line for the user.
    void operationFinished(bool succeeded, const QString &message);

private:
    using Job = std::function<void(HistoryStore *store)>;
    // Runs the job on the worker with the open store (null when there is none).
    void post(Job job);
    // Who a completion is for: watched from the moment of the request, on this thread.
    struct Receiver
    {
        QPointer<QObject> object;
        bool given = false;
    };
    [[nodiscard]] static Receiver receiver(QObject *context) { return { context, context != nullptr }; }
    // Runs `deliver` on this object's thread unless the receiver (when given) is gone by then.
    void reply(const Receiver &receiver, std::function<void()> deliver);
    HistoryStore *openStore();
    void setNotice(const QString &notice);
    void beginOperation();
    void finishOperation(bool succeeded, const QString &message);
    void runExport(const QString &reference, bool all, const QString &format, const QUrl &file);

    QString m_path;
    QThread m_thread;
    QObject *m_worker;
    // Used only on the worker thread.
    std::unique_ptr<HistoryStore> m_store;
    bool m_storeTried = false;

    mutable std::optional<bool> m_keepHistory;
    mutable std::optional<bool> m_sendEarlier;
    bool m_savingSuspended = false;
    QString m_notice;
    int m_conversationCount = -1;
    int m_busyOperations = 0;
    QAtomicInteger<int> m_posted = 0;
};

} // namespace zentrik
