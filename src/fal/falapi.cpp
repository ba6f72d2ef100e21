#include "fal/falapi.h"

namespace zentrik::fal {

FalApi::FalApi(HttpClient *http, ClientConfig config)
    : m_sender(std::make_shared<const RequestSender>(http, std::move(config)))
    , m_queue(m_sender)
    , m_storage(m_sender)
{ }

} // namespace zentrik::fal
