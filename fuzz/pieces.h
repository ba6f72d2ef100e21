#pragma once

#include <QByteArrayView>
#include <QList>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace zentrik::fuzz {

// Cuts an input into the pieces a network read might deliver. The sizes come from a small
// generator seeded with a hash of the input itself: one input is always cut the same way
// (a saved crash replays exactly), and every mutation of it is cut differently, without
// spending input bytes on the cuts. Most pieces are a few bytes long, so line endings, CRLF
// pairs and UTF-8 sequences land on piece boundaries often.
class Pieces
{
public:
    Pieces(const uint8_t *data, size_t size)
        : m_data(reinterpret_cast<const char *>(data))
        , m_size(qsizetype(size))
    {
        uint64_t hash = 0xcbf29ce484222325ULL;
        for (size_t i = 0; i < size; ++i) {
            hash = (hash ^ data[i]) * 0x100000001b3ULL;
        }
        m_state = hash | 1;
    }

    [[nodiscard]] QList<QByteArrayView> bytes()
    {
        QList<QByteArrayView> pieces;
        for (qsizetype at = 0; at < m_size;) {
            const qsizetype length = std::min(nextLength(), m_size - at);
            pieces.append(QByteArrayView(m_data + at, length));
            at += length;
        }
        return pieces;
    }

    // The next piece length: 0 to 16 mostly (empty pieces happen on the network too), now
    // and then up to 256.
    [[nodiscard]] qsizetype nextLength()
    {
        const uint64_t r = next();
        return (r & 0xf00) == 0 ? qsizetype(r % 257) : qsizetype(r % 17);
    }

    [[nodiscard]] uint64_t next()
    {
        // xorshift64*
        m_state ^= m_state >> 12;
        m_state ^= m_state << 25;
        m_state ^= m_state >> 27;
        return m_state * 0x2545f4914f6cdd1dULL;
    }

private:
    const char *m_data;
    qsizetype m_size;
    uint64_t m_state = 1;
};

} // namespace zentrik::fuzz
