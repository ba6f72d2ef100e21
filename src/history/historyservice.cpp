#include "history/historyservice.h"

#include "history/historystore.h"
#include "settings/preferences.h"

#include <QCoreApplication>
#include <QDir>
#include <QPointer>
#include <QRegularExpression>
#include <QSemaphore>
#include <QStandardPaths>

namespace zentrik {

HistoryService::HistoryService(QObject *parent)
    : HistoryService(HistoryStore::defaultPath(), parent)
{ }

HistoryService::HistoryService(QString databasePath, QObject *parent)
    : QObject(parent)
    , m_path(std::move(databasePath))
    , m_worker(new QObject)
{
    m_thread.setObjectName(QStringLiteral("history"));
    m_worker->moveToThread(&m_thread);
}

HistoryService::~HistoryService()
{
    // Writes still queued are finished, and the connection is closed on the thread it
    // belongs to, before the thread ends.
    if (m_posted.loadRelaxed() > 0 && !m_thread.isRunning()) {
        m_thread.start();
    }
    if (m_thread.isRunning()) {
        QMetaObject::invokeMethod(
            m_worker,
            [this] {
                m_store.reset();
                QThread::currentThread()->quit();
            },
            Qt::QueuedConnection);
        m_thread.wait();
    }
    delete m_worker;
}

bool HistoryService::keepHistory() const
{
    if (!m_keepHistory) {
        m_keepHistory = Preferences().boolean(QLatin1String(keepHistoryPreference), true);
    }
    return *m_keepHistory;
}

void HistoryService::setKeepHistory(bool keep)
{
    if (keepHistory() == keep) {
        return;
    }
    m_keepHistory = keep;
    Preferences preferences;
    if (!preferences.setBoolean(QLatin1String(keepHistoryPreference), keep)) {
        setNotice(preferences.errorString());
    }
    Q_EMIT keepHistoryChanged();
}

bool HistoryService::sendEarlierMessages() const
{
    if (!m_sendEarlier) {
        m_sendEarlier = Preferences().boolean(QLatin1String(sendEarlierPreference), true);
    }
    return *m_sendEarlier;
}

void HistoryService::setSendEarlierMessages(bool send)
{
    if (sendEarlierMessages() == send) {
        return;
    }
    m_sendEarlier = send;
    Preferences preferences;
    if (!preferences.setBoolean(QLatin1String(sendEarlierPreference), send)) {
        setNotice(preferences.errorString());
    }
    Q_EMIT sendEarlierMessagesChanged();
}

void HistoryService::start()
{
    if (!m_thread.isRunning()) {
        m_thread.start(QThread::LowPriority);
    }
}

bool HistoryService::waitForIdle(int timeoutMs)
{
    start();
    auto done = std::make_shared<QSemaphore>();
    QMetaObject::invokeMethod(
        m_worker, [done] { done->release(); }, Qt::QueuedConnection);
    return done->tryAcquire(1, timeoutMs);
}

HistoryStore *HistoryService::openStore()
{
    if (!m_storeTried) {
        m_storeTried = true;
        auto store = std::make_unique<HistoryStore>(m_path);
        if (store->open()) {
            m_store = std::move(store);
            if (!m_store->notice().isEmpty()) {
                reply({}, [this, notice = m_store->notice()] { setNotice(notice); });
            }
        } else {
            reply({}, [this, error = store->error()] {
                setNotice(tr("Conversation history is unavailable: %1").arg(error));
            });
        }
    }
    return m_store.get();
}

void HistoryService::post(Job job)
{
    m_posted.fetchAndAddRelaxed(1);
    QMetaObject::invokeMethod(
        m_worker, [this, job = std::move(job)] { job(openStore()); }, Qt::QueuedConnection);
}

void HistoryService::reply(const Receiver &receiver, std::function<void()> deliver)
{
    QMetaObject::invokeMethod(
        this,
        [receiver, deliver = std::move(deliver)] {
            if (!receiver.given || !receiver.object.isNull()) {
                deliver();
            }
        },
        Qt::QueuedConnection);
}

void HistoryService::setNotice(const QString &notice)
{
    if (m_notice == notice) {
        return;
    }
    m_notice = notice;
    Q_EMIT noticeChanged();
}

void HistoryService::saveMessage(const ConversationRecord &conversation, const StoredMessage &message)
{
    if (!isSaving()) {
        return;
    }
    post([this, conversation, message](HistoryStore *store) {
        const bool saved = store != nullptr && store->saveMessage(conversation, message);
        reply({}, [this, saved, error = store ? store->error() : QString()] {
            if (!saved && !error.isEmpty()) {
                setNotice(tr("A message could not be saved in the history: %1").arg(error));
            }
            Q_EMIT changed();
        });
    });
}

void HistoryService::saveImageRun(
    const ConversationRecord &conversation, const StoredMessage &prompt, const QByteArray &png)
{
    if (!isSaving()) {
        return;
    }
    post([this, conversation, prompt, png](HistoryStore *store) {
        ConversationRecord withPicture = conversation;
        std::optional<QString> path = store ? store->keepPicture(conversation.uid, png) : std::nullopt;
        if (path) {
            withPicture.image = ImageRun { conversation.image ? conversation.image->model : QString(), *path };
        }
        const bool saved = path && store->saveMessage(withPicture, prompt);
        reply({}, [this, saved, error = store ? store->error() : QString()] {
            if (!saved && !error.isEmpty()) {
                setNotice(tr("A picture could not be saved in the history: %1").arg(error));
            }
            Q_EMIT changed();
        });
    });
}

void HistoryService::removeMessages(const QString &conversationUid, const QStringList &messageUids)
{
    if (!isSaving() || messageUids.isEmpty()) {
        return;
    }
    post([this, conversationUid, messageUids](HistoryStore *store) {
        if (store) {
            store->removeMessages(conversationUid, messageUids);
        }
        reply({}, [this] { Q_EMIT changed(); });
    });
}

void HistoryService::rename(const QString &reference, const QString &title)
{
    post([this, reference, title](HistoryStore *store) {
        const bool renamed = store != nullptr && store->rename(reference, title);
        reply({}, [this, renamed] {
            if (renamed) {
                Q_EMIT changed();
            }
        });
    });
}

void HistoryService::list(const QString &tool, int limit, QObject *context, ListCompletion completion)
{
    post([this, tool, limit, to = receiver(context), completion = std::move(completion)](HistoryStore *store) {
        QList<ConversationRecord> found = store ? store->list(tool, limit) : QList<ConversationRecord>();
        reply(to, [completion, found = std::move(found)] { completion(found); });
    });
}

void HistoryService::search(
    const QString &text, const QString &tool, int limit, QObject *context, SearchCompletion completion)
{
    post([this, text, tool, limit, to = receiver(context), completion = std::move(completion)](HistoryStore *store) {
        QList<SearchHit> hits = store ? store->search(text, tool, limit) : QList<SearchHit>();
        reply(to, [completion, hits = std::move(hits)] { completion(hits); });
    });
}

void HistoryService::load(const QString &reference, QObject *context, LoadCompletion completion)
{
    post([this, reference, to = receiver(context), completion = std::move(completion)](HistoryStore *store) {
        std::optional<ConversationRecord> found = store ? store->load(reference) : std::nullopt;
        const QString error = found ? QString() : (store ? store->error() : tr("Conversation history is unavailable."));
        reply(to, [completion, found = std::move(found), error] { completion(found, error); });
    });
}

void HistoryService::take(const QString &reference, QObject *context, LoadCompletion completion)
{
    post([this, reference, to = receiver(context), completion = std::move(completion)](HistoryStore *store) {
        std::optional<ConversationRecord> taken = store ? store->take(reference) : std::nullopt;
        const QString error = taken ? QString() : (store ? store->error() : tr("Conversation history is unavailable."));
        reply({}, [this, to, completion, taken = std::move(taken), error] {
            if (taken) {
                Q_EMIT conversationsRemoved({ taken->uid }, false);
                Q_EMIT changed();
            }
            if (!to.given || to.object) {
                completion(taken, error);
            }
        });
    });
}

void HistoryService::restore(
    const QList<ConversationRecord> &conversations, QObject *context, RestoreCompletion completion)
{
    post([this, conversations, to = receiver(context), completion = std::move(completion)](HistoryStore *store) {
        const bool restored = store != nullptr && store->import(conversations, true).has_value();
        reply(to, [this, completion, restored] {
            Q_EMIT changed();
            completion(restored);
        });
    });
}

void HistoryService::removeUnusedPictures()
{
    post([](HistoryStore *store) {
        if (store) {
            store->removeUnreferencedPictures();
        }
    });
}

void HistoryService::refreshCount()
{
    post([this](HistoryStore *store) {
        const int count = store ? store->count().value_or(-1) : -1;
        reply({}, [this, count] {
            if (m_conversationCount != count) {
                m_conversationCount = count;
                Q_EMIT conversationCountChanged();
            }
        });
    });
}

QUrl HistoryService::suggestedExportFile(const QString &title, const QString &format)
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (folder.isEmpty() || !QDir(folder).exists()) {
        folder = QDir::homePath();
    }
    // Letters, digits and single dashes: a name every file system and shell takes as it is.
    static const QRegularExpression unsafe(QStringLiteral("[^\\w]+"), QRegularExpression::UseUnicodePropertiesOption);
    QString name = title.left(60).toLower().replace(unsafe, QStringLiteral("-"));
    name = name.mid(name.startsWith(QLatin1Char('-')) ? 1 : 0);
    name.chop(name.endsWith(QLatin1Char('-')) ? 1 : 0);
    if (name.isEmpty()) {
        name = QStringLiteral("zentrik-history");
    }
    const QString suffix = format == QLatin1String("json") ? QStringLiteral(".json") : QStringLiteral(".md");
    return QUrl::fromLocalFile(QDir(folder).absoluteFilePath(name + suffix));
}

} // namespace zentrik
