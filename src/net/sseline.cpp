#include "net/sseline.h"

namespace zentrik {

SseLine SseLine::classify(QByteArrayView line)
{
    static constexpr QByteArrayView dataPrefix("data: ");
    static constexpr QByteArrayView eventPrefix("event: ");
    static constexpr QByteArrayView doneMarker("[DONE]");

    if (line.isEmpty()) {
        return { Kind::Blank, {} };
    }
    if (line.startsWith(dataPrefix)) {
        const QByteArrayView payload = line.sliced(dataPrefix.size());
        if (payload == doneMarker) {
            return { Kind::Done, payload };
        }
        return { Kind::Data, payload };
    }
    if (line.front() == ':') {
        return { Kind::Comment, line.sliced(1) };
    }
    if (line.startsWith(eventPrefix)) {
        return { Kind::Event, line.sliced(eventPrefix.size()) };
    }
    return { Kind::Other, line };
}

} // namespace zentrik
