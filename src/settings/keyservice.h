#pragma once

#include "settings/secretstore.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>

namespace zentrik {

// The keys in the Secret Service, reached from one worker thread so that a service that is
// slow, waits on a prompt or never answers holds up nobody: the window and its screens ask
// and are called back on their own thread. Each request, whatever number of items it
// touches, has one time limit (deadline) counted from the moment it was asked, so a request
// queued behind one that hangs does not wait any longer.
class KeyService : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds deadline { SecretStore::timeoutMs };

    struct Outcome
    {
        // secretSuccess when every item was read (or found absent) or changed; otherwise the
        // first failure.
        int code = secretSuccess;
        // Read requests: the accounts found, with their values.
        QHash<QString, QString> values;
        [[nodiscard]] bool succeeded() const { return code == secretSuccess; }
    };
    using Completion = std::function<void(const Outcome &outcome)>;
    // An account and its new value; an empty value removes the account.
    using Change = std::pair<QString, QString>;

    explicit KeyService(QObject *parent = nullptr);
    // Reads still queued are dropped and one in progress gives up at once; writes already
    // asked for are still made (each within its time limit), so a key the user saved is not
    // lost when the window closes. No completion runs after this.
    ~KeyService() override;
    KeyService(const KeyService &) = delete;
    KeyService &operator=(const KeyService &) = delete;

    // Each completion runs once, on this object's thread, never from inside the call and
    // never after `context` (when given) is gone.
    void read(const QStringList &accounts, QObject *context, Completion completion);
    void write(const QList<Change> &changes, QObject *context, Completion completion);

    // The one line a user is shown for a failed request's code, naming the Secret Service.
    [[nodiscard]] static QString describe(int code);

private:
    struct Job
    {
        bool isRead = false;
        SecretStore::Clock::time_point deadline;
        std::function<Outcome(SecretStore &store)> work;
        QPointer<QObject> context;
        bool hasContext = false;
        Completion completion;
    };

    void enqueue(bool isRead, std::function<Outcome(SecretStore &store)> work, QObject *context, Completion completion);
    void run();

    SecretStore m_store;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<Job> m_jobs;
    bool m_runningRead = false;
    std::atomic<bool> m_stopping { false };
    std::thread m_worker;
};

} // namespace zentrik
