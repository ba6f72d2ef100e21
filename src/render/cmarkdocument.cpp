#include "render/cmarkdocument.h"

#include <cmark-gfm-core-extensions.h>

#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

namespace zentrik {

namespace {

// The extensions register once per process; looking them up by name on every parse would
// walk the registry each time a streamed piece arrives.
const std::array<cmark_syntax_extension *, 4> &extensions()
{
    static const std::array<cmark_syntax_extension *, 4> found = [] {
        cmark_gfm_core_extensions_ensure_registered();
        return std::array<cmark_syntax_extension *, 4>{
            cmark_find_syntax_extension("table"), cmark_find_syntax_extension("strikethrough"),
            cmark_find_syntax_extension("autolink"), cmark_find_syntax_extension("tasklist")};
    }();
    return found;
}

// cmark allocates every node, buffer and list cell on its own and frees them one by one;
// for the many small parses of a streamed reply that costs a third of the time. A parse
// lives only as long as its CmarkDocument, so its memory comes from a per-thread arena
// that is emptied at once when the last document on the thread goes. The arena's memory is
// kept zeroed ahead of use, so cmark's calloc is a pointer bump, and what a parse used is
// cleared in one stroke when the arena empties.
class Arena
{
public:
    void *allocate(size_t size)
    {
        const size_t total = (size + header + alignment - 1) / alignment * alignment;
        if (m_chunks.empty() || m_used + total > m_capacity) {
            addChunk(total);
        }
        std::byte *block = m_chunks.back().get() + m_used;
        m_used += total;
        m_last = block + header;
        std::memcpy(block, &size, sizeof size);
        return m_last;
    }

    void *reallocate(void *pointer, size_t size)
    {
        if (pointer == nullptr) {
            return allocate(size);
        }
        auto *block = static_cast<std::byte *>(pointer) - header;
        size_t old = 0;
        std::memcpy(&old, block, sizeof old);
        if (size <= old) {
            return pointer;
        }
        // Growing the latest allocation (a buffer being appended to) needs no copy.
        const size_t total = (size + header + alignment - 1) / alignment * alignment;
        if (pointer == m_last && size_t(block - m_chunks.back().get()) + total <= m_capacity) {
            m_used = size_t(block - m_chunks.back().get()) + total;
            std::memcpy(block, &size, sizeof size);
            return pointer;
        }
        void *moved = allocate(size);
        std::memcpy(moved, pointer, old);
        return moved;
    }

    void retain() { ++m_users; }

    void release()
    {
        if (--m_users > 0) {
            return;
        }
        // Keep one chunk for the next parse, cleared as far as it was used; hand the rest back.
        if (m_chunks.size() > 1 || m_capacity > chunkSize) {
            m_chunks.clear();
            m_capacity = 0;
        } else if (!m_chunks.empty()) {
            std::memset(m_chunks.back().get(), 0, m_used);
        }
        m_used = 0;
        m_last = nullptr;
    }

private:
    struct FreeChunk {
        void operator()(std::byte *chunk) const { std::free(chunk); }
    };

    void addChunk(size_t atLeast)
    {
        m_capacity = std::max(chunkSize, atLeast);
        // calloc hands out fresh pages of a large chunk without writing to them.
        auto *chunk = static_cast<std::byte *>(std::calloc(1, m_capacity));
        if (chunk == nullptr) {
            throw std::bad_alloc();
        }
        m_chunks.emplace_back(chunk);
        m_used = 0;
    }

    static constexpr size_t alignment = alignof(std::max_align_t);
    static constexpr size_t header = alignment;
    static constexpr size_t chunkSize = 64 * 1024;

    std::vector<std::unique_ptr<std::byte, FreeChunk>> m_chunks;
    size_t m_used = 0;
    size_t m_capacity = 0;
    void *m_last = nullptr;
    int m_users = 0;
};

thread_local Arena arena;

void *arenaCalloc(size_t count, size_t size)
{
    if (size != 0 && count > SIZE_MAX / size) {
        return nullptr;
    }
    return arena.allocate(count * size);
}

void *arenaRealloc(void *pointer, size_t size)
{
    return arena.reallocate(pointer, size);
}

void arenaFree(void * /*pointer*/)
{
}

cmark_mem arenaMemory = {arenaCalloc, arenaRealloc, arenaFree};

} // namespace

CmarkDocument::CmarkDocument(QByteArrayView utf8, Extensions which)
{
    arena.retain();
    m_parser = cmark_parser_new_with_mem(CMARK_OPT_DEFAULT, &arenaMemory);
    const auto &all = extensions();
    // The table and task list extensions act on block structure only.
    const size_t first = which == Extensions::Inline ? 1 : 0;
    const size_t last = which == Extensions::Inline ? 3 : all.size();
    for (size_t i = first; i < last; ++i) {
        if (all.at(i) != nullptr) {
            cmark_parser_attach_syntax_extension(m_parser, all.at(i));
        }
    }
    cmark_parser_feed(m_parser, utf8.data(), size_t(utf8.size()));
    m_root = cmark_parser_finish(m_parser);
}

CmarkDocument::~CmarkDocument()
{
    // Every node and the parser itself live in the arena, which drops them all at once;
    // walking the tree to free each one would only cost time.
    arena.release();
}

QString CmarkDocument::toHtml() const
{
    // The rendering is allocated in the document's arena and goes with it.
    return QString::fromUtf8(
        cmark_render_html(m_root, CMARK_OPT_DEFAULT, cmark_parser_get_syntax_extensions(m_parser)));
}

} // namespace zentrik
