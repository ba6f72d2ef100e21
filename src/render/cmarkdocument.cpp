#include "render/cmarkdocument.h"

#include <cmark-gfm-core-extensions.h>

#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <vector>

namespace zentrik {

namespace {

// The extensions register once per process; looking them up by name on every parse would
// walk the registry each time a streamed piece arrives.
const std::array<cmark_syntax_extension *, 4> &extensions()
{
    static const std::array<cmark_syntax_extension *, 4> found = [] {
        cmark_gfm_core_extensions_ensure_registered();
        return std::array<cmark_syntax_extension *, 4> { cmark_find_syntax_extension("table"),
            cmark_find_syntax_extension("strikethrough"), cmark_find_syntax_extension("autolink"),
            cmark_find_syntax_extension("tasklist") };
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
    struct FreeChunk
    {
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
    static constexpr size_t chunkSize = size_t(64) * 1024;

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
{ }

cmark_mem arenaMemory = { arenaCalloc, arenaRealloc, arenaFree };

// cmark-gfm's task list extension ticks an item when "[x]" appears anywhere on its first
// line, so "- [ ] read arr[x]" came out checked, and a streamed item flipped to checked when
// such text arrived after it had opened. The box is the three bytes after the list marker
// and its blanks; this reads it there. An item whose line does not look like that (a NUL
// that cmark widened moves the columns) keeps cmark's reading.
std::optional<bool> boxAt(QByteArrayView line)
{
    qsizetype at = 0;
    if (at < line.size() && (line[at] == '-' || line[at] == '+' || line[at] == '*')) {
        ++at;
    } else {
        while (at < line.size() && line[at] >= '0' && line[at] <= '9') {
            ++at;
        }
        if (at == 0 || at >= line.size() || (line[at] != '.' && line[at] != ')')) {
            return std::nullopt;
        }
        ++at;
    }
    const qsizetype marker = at;
    while (at < line.size() && (line[at] == ' ' || line[at] == '\t')) {
        ++at;
    }
    if (at == marker || at + 2 >= line.size() || line[at] != '[' || line[at + 2] != ']') {
        return std::nullopt;
    }
    return line[at + 1] == 'x' || line[at + 1] == 'X';
}

void readTaskBoxes(cmark_node *root, QByteArrayView utf8)
{
    std::vector<qsizetype> lineStarts;
    cmark_iter *iter = cmark_iter_new(root);
    for (cmark_event_type event = cmark_iter_next(iter); event != CMARK_EVENT_DONE; event = cmark_iter_next(iter)) {
        cmark_node *node = cmark_iter_get_node(iter);
        if (event != CMARK_EVENT_ENTER || std::strcmp(cmark_node_get_type_string(node), "tasklist") != 0) {
            continue;
        }
        if (lineStarts.empty()) {
            // Lines as cmark counts them: ended by LF, CR or CRLF; a leading byte order mark
            // is not part of the first.
            lineStarts.push_back(utf8.startsWith("\xef\xbb\xbf") ? 3 : 0);
            for (qsizetype i = 0; i < utf8.size(); ++i) {
                if (utf8[i] == '\r' && i + 1 < utf8.size() && utf8[i + 1] == '\n') {
                    ++i;
                }
                if (utf8[i] == '\r' || utf8[i] == '\n') {
                    lineStarts.push_back(i + 1);
                }
            }
        }
        const int line = cmark_node_get_start_line(node);
        const int column = cmark_node_get_start_column(node);
        if (line < 1 || size_t(line) > lineStarts.size() || column < 1) {
            continue;
        }
        const qsizetype start = lineStarts.at(size_t(line) - 1) + column - 1;
        const qsizetype end = size_t(line) < lineStarts.size() ? lineStarts.at(size_t(line)) : utf8.size();
        if (start >= end) {
            continue;
        }
        if (const std::optional<bool> checked = boxAt(utf8.sliced(start, end - start))) {
            cmark_gfm_extensions_set_tasklist_item_checked(node, *checked);
        }
    }
    cmark_iter_free(iter);
}

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
    if (which == Extensions::All) {
        readTaskBoxes(m_root, utf8);
    }
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
