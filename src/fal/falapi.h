#pragma once

#include "fal/falconfig.h"
#include "fal/falqueueclient.h"
#include "fal/falstorageclient.h"

#include <memory>

namespace zentrik::fal {

// The fal client: one configuration (credentials, optional proxy) shared by its queue and
// its storage. Copies are cheap and share the configuration; operations in flight keep
// what they need alive. The realtime (WebSocket) connection is not part of this client.
class FalApi
{
public:
    FalApi(HttpClient *http, ClientConfig config);

    [[nodiscard]] const ClientConfig &config() const { return m_sender->config(); }
    [[nodiscard]] QueueClient &queue() { return m_queue; }
    [[nodiscard]] const QueueClient &queue() const { return m_queue; }
    [[nodiscard]] const StorageClient &storage() const { return m_storage; }

private:
    std::shared_ptr<const RequestSender> m_sender;
    QueueClient m_queue;
    StorageClient m_storage;
};

} // namespace zentrik::fal
