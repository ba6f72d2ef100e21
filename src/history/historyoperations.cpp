// HistoryService: the user's operations on the whole history (export, import, delete all).
#include "history/historyformat.h"
#include "history/historyservice.h"
#include "history/historystore.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSaveFile>

namespace zentrik {

namespace {

QString localPath(const QUrl &file)
{
    return file.isLocalFile() ? file.toLocalFile() : file.toString();
}

bool writeFile(const QString &path, const QByteArray &bytes, QString &error)
{
    QSaveFile out(path);
    if (path.isEmpty() || !out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit()) {
        error = path.isEmpty() ? QCoreApplication::translate("zentrik::HistoryService", "No file was chosen.")
                               : out.errorString();
        return false;
    }
    return true;
}

} // namespace

void HistoryService::beginOperation()
{
    if (++m_busyOperations == 1) {
        Q_EMIT isBusyChanged();
    }
}

void HistoryService::finishOperation(bool succeeded, const QString &message)
{
    if (--m_busyOperations == 0) {
        Q_EMIT isBusyChanged();
    }
    Q_EMIT operationFinished(succeeded, message);
}

void HistoryService::deleteAll()
{
    beginOperation();
    post([this](HistoryStore *store) {
        const std::optional<int> removed = store ? store->removeAll() : std::nullopt;
        if (removed) {
            store->removeUnreferencedPictures();
        }
        reply({}, [this, removed, error = store ? store->error() : QString()] {
            if (removed) {
                m_conversationCount = 0;
                Q_EMIT conversationCountChanged();
                Q_EMIT conversationsRemoved({}, true);
                Q_EMIT changed();
            }
            finishOperation(removed.has_value(),
                removed ? tr("Deleted %n conversation(s).", nullptr, *removed)
                        : tr("The history could not be deleted: %1").arg(error));
        });
    });
}

void HistoryService::exportConversation(const QString &reference, const QString &format, const QUrl &file)
{
    runExport(reference, false, format, file);
}

void HistoryService::exportAll(const QString &format, const QUrl &file)
{
    runExport({}, true, format, file);
}

void HistoryService::runExport(const QString &reference, bool all, const QString &format, const QUrl &file)
{
    beginOperation();
    post([this, reference, all, format, path = localPath(file)](HistoryStore *store) {
        QString error = store ? QString() : tr("Conversation history is unavailable.");
        QList<ConversationRecord> conversations;
        if (store && all) {
            conversations = store->loadAll();
        } else if (store) {
            if (std::optional<ConversationRecord> one = store->load(reference)) {
                conversations.append(*one);
            } else {
                error = store->error();
            }
        }
        if (error.isEmpty()) {
            const QByteArray bytes = format == QLatin1String("json")
                ? historyformat::toJson(conversations)
                : historyformat::toMarkdown(conversations).toUtf8();
            writeFile(path, bytes, error);
        }
        reply({}, [this, error, path, count = conversations.size()] {
            finishOperation(error.isEmpty(),
                error.isEmpty()
                    ? tr("Exported %n conversation(s) to %1.", nullptr, int(count)).arg(QDir::toNativeSeparators(path))
                    : tr("Export failed: %1").arg(error));
        });
    });
}

void HistoryService::importFile(const QUrl &file)
{
    beginOperation();
    post([this, path = localPath(file)](HistoryStore *store) {
        QString message;
        bool succeeded = false;
        QFile in(path);
        if (!store) {
            message = tr("Conversation history is unavailable.");
        } else if (!in.open(QIODevice::ReadOnly)) {
            message = in.errorString();
        } else if (in.size() > historyformat::largestImport) {
            message = tr("the file is larger than 512 MB");
        } else {
            auto parsed = historyformat::fromJson(in.readAll());
            if (const auto *problem = std::get_if<QString>(&parsed)) {
                message = *problem;
            } else if (const auto counts = store->import(std::get<QList<ConversationRecord>>(parsed))) {
                succeeded = true;
                message = tr("Imported %n conversation(s) with %1 new message(s); %2 already there.", nullptr,
                    counts->conversations)
                              .arg(counts->messages)
                              .arg(counts->present);
            } else {
                message = store->error();
            }
        }
        reply({}, [this, succeeded, message] {
            if (succeeded) {
                Q_EMIT changed();
            }
            finishOperation(succeeded, succeeded ? message : tr("Import failed: %1").arg(message));
        });
    });
}

} // namespace zentrik
