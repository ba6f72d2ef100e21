#include "net/linesplitter.h"

#include <algorithm>

namespace zentrik {

LineSplitter::LineSplitter(qsizetype maxLineLength)
    : m_maxLineLength(maxLineLength)
{ }

LineSplitter::Status LineSplitter::feed(QByteArrayView bytes, const Sink &sink)
{
    if (m_status != Status::Ok) {
        return m_status;
    }
    const char *data = bytes.data();
    const qsizetype size = bytes.size();
    qsizetype at = 0;
    if (m_swallowLf && size > 0) {
        m_swallowLf = false;
        if (data[0] == '\n') {
            at = 1;
        }
    }
    while (at < size) {
        const char *begin = data + at;
        const char *end = std::find_if(begin, data + size, [](char c) { return c == '\n' || c == '\r'; });
        const qsizetype length = end - begin;
        if (m_pending.size() + length > m_maxLineLength) {
            m_pending.clear();
            m_status = Status::LineTooLong;
            return m_status;
        }
        if (end == data + size) {
            m_pending.append(begin, length);
            break;
        }
        bool goOn = false;
        if (m_pending.isEmpty()) {
            goOn = sink(QByteArrayView(begin, length));
        } else {
            m_pending.append(begin, length);
            goOn = sink(m_pending);
            m_pending.clear();
        }
        at += length + 1;
        if (*end == '\r') {
            if (at < size) {
                if (data[at] == '\n') {
                    ++at;
                }
            } else {
                m_swallowLf = true;
            }
        }
        if (!goOn) {
            m_status = Status::Stopped;
            return m_status;
        }
    }
    return m_status;
}

LineSplitter::Status LineSplitter::finish(const Sink &sink)
{
    if (m_status != Status::Ok || m_pending.isEmpty()) {
        return m_status;
    }
    const QByteArray last = std::exchange(m_pending, {});
    if (!sink(last)) {
        m_status = Status::Stopped;
    }
    return m_status;
}

} // namespace zentrik
