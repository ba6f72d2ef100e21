#pragma once

#include <QByteArrayView>

namespace zentrik {

// One line of a server-sent-events stream, classified. Only "data: " with its blank
// counts as data: the chat services always write the blank, and a line written without
// it ("data:[DONE]") is deliberately not taken as data.
struct SseLine
{
    enum class Kind {
        Data, // "data: " followed by the payload in value
        Done, // "data: [DONE]", the end marker of the chat services
        Event, // "event: " followed by the event name in value
        Comment, // ":" followed by anything (keep-alives such as ": OPENROUTER PROCESSING")
        Blank, // an empty line, the end of one event
        Other, // any other field or text, skipped by every reader
    };

    Kind kind = Kind::Other;
    // Views into the classified line: valid only as long as that line is.
    QByteArrayView value;

    [[nodiscard]] static SseLine classify(QByteArrayView line);
};

} // namespace zentrik
