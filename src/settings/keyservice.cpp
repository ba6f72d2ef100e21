#include "settings/keyservice.h"

#include <QCoreApplication>

namespace zentrik {

KeyService::KeyService(QObject *parent)
    : QObject(parent)
{ }

KeyService::~KeyService()
{
    bool readInProgress = false;
    {
        std::lock_guard guard(m_mutex);
        m_stopping = true;
        std::erase_if(m_jobs, [](const Job &job) { return job.isRead; });
        readInProgress = m_runningRead;
    }
    m_wake.notify_all();
    if (readInProgress) {
        m_store.cancelCurrentCall();
    }
    if (m_worker.joinable()) {
        m_worker.join();
    }
}

void KeyService::read(const QStringList &accounts, QObject *context, Completion completion)
{
    enqueue(
        true,
        [this, accounts](SecretStore &store) {
            Outcome outcome;
            for (const QString &account : accounts) {
                if (m_stopping) {
                    outcome.code = secretTimedOut;
                    break;
                }
                if (std::optional<QString> value = store.get(account)) {
                    outcome.values.insert(account, *value);
                } else if (store.lastResultCode() != secretNotFound) {
                    // The other accounts would only wait for the same broken service.
                    outcome.code = store.lastResultCode();
                    break;
                }
            }
            return outcome;
        },
        context, std::move(completion));
}

void KeyService::write(const QList<Change> &changes, QObject *context, Completion completion)
{
    enqueue(
        false,
        [changes](SecretStore &store) {
            Outcome outcome;
            for (const auto &[account, value] : changes) {
                const bool done = value.isEmpty() ? (store.remove(account) || store.lastResultCode() == secretNotFound)
                                                  : store.set(value, account);
                if (!done && outcome.code == secretSuccess) {
                    outcome.code = store.lastResultCode();
                }
            }
            return outcome;
        },
        context, std::move(completion));
}

void KeyService::enqueue(
    bool isRead, std::function<Outcome(SecretStore &store)> work, QObject *context, Completion completion)
{
    Job job { isRead, SecretStore::Clock::now() + deadline, std::move(work), context, context != nullptr,
        std::move(completion) };
    {
        std::lock_guard guard(m_mutex);
        if (m_stopping) {
            return;
        }
        m_jobs.push_back(std::move(job));
        // The thread starts with the first request, so a run that never needs a key never
        // touches the bus.
        if (!m_worker.joinable()) {
            m_worker = std::thread([this] { run(); });
        }
    }
    m_wake.notify_one();
}

void KeyService::run()
{
    for (;;) {
        Job job;
        {
            std::unique_lock guard(m_mutex);
            m_wake.wait(guard, [this] { return m_stopping || !m_jobs.empty(); });
            if (m_jobs.empty()) {
                return;
            }
            job = std::move(m_jobs.front());
            m_jobs.pop_front();
            m_runningRead = job.isRead;
        }
        m_store.setDeadline(job.deadline);
        Outcome outcome = job.work(m_store);
        {
            std::lock_guard guard(m_mutex);
            m_runningRead = false;
        }
        // Delivered through this object, which lives until the thread is joined; the context
        // is looked at only on its own thread.
        QMetaObject::invokeMethod(
            this,
            [job = std::move(job), outcome = std::move(outcome)] {
                if (!job.hasContext || !job.context.isNull()) {
                    job.completion(outcome);
                }
            },
            Qt::QueuedConnection);
    }
}

QString KeyService::describe(int code)
{
    switch (code) {
    case secretSuccess:
        return {};
    case secretNoService:
        return tr("No Secret Service is running, so API keys can be neither saved nor read. Start GNOME Keyring or "
                  "KWallet and try again.");
    case secretTimedOut:
        return tr("The Secret Service did not answer within 2 seconds (it may be waiting for a password prompt), so "
                  "the API keys were not read or saved. Unlock your keyring and try again.");
    case secretLocked:
        return tr("The keyring is locked, so the API keys were not read or saved. Unlock it and try again.");
    case secretNoKeyring:
        return tr("The Secret Service has no default keyring to keep the API keys in. Create one (for example in "
                  "Passwords and Keys) and try again.");
    case secretNotFound:
        return tr("The key was not found in the Secret Service.");
    default:
        return tr("The Secret Service refused to read or save the API keys. Check that your keyring works (for "
                  "example in Passwords and Keys) and try again.");
    }
}

} // namespace zentrik
