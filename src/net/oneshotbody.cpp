#include "net/oneshotbody.h"

#include <cstring>

namespace zentrik {

OneShotBody::OneShotBody(QByteArray body, QObject *parent)
    : QIODevice(parent)
    , m_body(std::move(body))
{
    open(QIODevice::ReadOnly);
}

bool OneShotBody::seek(qint64 position)
{
    // Qt only seeks to send the body again (a first send reads it from the start without
    // seeking), and an empty body has nothing to read that could show a second send: every
    // seek is refused.
    Q_UNUSED(position)
    m_rewindRefused = true;
    return false;
}

qint64 OneShotBody::readData(char *data, qint64 maxSize)
{
    const qint64 at = pos();
    const qint64 count = std::min(maxSize, qint64(m_body.size()) - at);
    if (count <= 0) {
        return at >= m_body.size() ? -1 : 0;
    }
    std::memcpy(data, m_body.constData() + at, size_t(count));
    return count;
}

qint64 OneShotBody::writeData(const char * /*data*/, qint64 /*maxSize*/)
{
    return -1;
}

} // namespace zentrik
