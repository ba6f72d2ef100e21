#pragma once

#include <QString>

namespace zentrik {

// A failure below HTTP: the exchange produced no usable answer. The kinds are the ones
// callers tell apart; everything else is Other and keeps Qt's own description.
struct TransportError
{
    enum class Kind {
        NotConnected,
        HostNotFound,
        TimedOut,
        ConnectionLost,
        Other,
    };

    Kind kind = Kind::Other;
    QString description;

    friend bool operator==(const TransportError &, const TransportError &) = default;
};

} // namespace zentrik
