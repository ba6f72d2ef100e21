#pragma once

#include "history/historyservice.h"
#include "history/historystore.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace zentrik::test {

// A history in a scratch folder for the tools' tests: the service the view models save
// through, and a look at what reached the file (through a connection of its own, once every
// save so far has run).
class StoredHistory
{
public:
    StoredHistory()
        : service(std::make_unique<HistoryService>(path()))
    {
        service->start();
    }

    [[nodiscard]] QString path() const { return m_dir.filePath(QStringLiteral("history.sqlite")); }

    [[nodiscard]] QList<ConversationRecord> conversations()
    {
        if (!service->waitForIdle()) {
            return {};
        }
        HistoryStore store(path());
        return store.open() ? store.loadAll() : QList<ConversationRecord>();
    }

    // The texts of the one stored conversation's messages, in order.
    [[nodiscard]] QStringList texts()
    {
        const QList<ConversationRecord> all = conversations();
        QStringList found;
        for (const StoredMessage &message : all.isEmpty() ? QList<StoredMessage>() : all.first().messages) {
            found.append(message.text);
        }
        return found;
    }

private:
    QTemporaryDir m_dir;

public:
    std::unique_ptr<HistoryService> service;
};

} // namespace zentrik::test
