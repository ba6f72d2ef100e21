#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>

namespace zentrik::fuzz {

// The text a target works on. Normally the bytes as UTF-8, which is how text reaches the
// program from the keyboard, the clipboard and the network. An input that begins with a
// UTF-16 byte-order mark (FF FE) is taken as raw UTF-16 instead, so the fuzzer can also
// reach lone surrogates and NUL characters, which no UTF-8 decoding produces.
inline QString textOf(const uint8_t *data, size_t size)
{
    if (size >= 2 && data[0] == 0xff && data[1] == 0xfe) {
        QString text;
        text.resize(qsizetype((size - 2) / 2));
        for (qsizetype i = 0; i < text.size(); ++i) {
            text[i] = QChar(char16_t(data[2 + 2 * i] | (data[3 + 2 * i] << 8)));
        }
        return text;
    }
    return QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
}

} // namespace zentrik::fuzz
