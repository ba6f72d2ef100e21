#pragma once

#include "render/markdownblock.h"

#include <QByteArray>
#include <QStringView>

#include <optional>

namespace zentrik {

// A list or table of a streamed reply whose first items or rows are final while more may
// follow. The unfinished tail then starts at the item or row being written and parses into
// the rest of the block, which is merged onto the final part.
class OpenBlock
{
public:
    // A list whose first `entries` rows are final; the next top-level item is numbered
    // nextNumber.
    [[nodiscard]] static OpenBlock list(
        const MarkdownBlock &list, qsizetype entries, qint64 nextNumber, bool parenDelimiter);
    // A table whose rows but the last are final. The rows after them parse into a table only
    // behind its header and delimiter lines (headerLines, each ending with a line break).
    // Nothing when those lines alone do not give the table's header and alignments.
    [[nodiscard]] static std::optional<OpenBlock> table(const MarkdownBlock &table, QStringView headerLines);
    // The same table, grown: its rows but the last are final now.
    [[nodiscard]] std::optional<OpenBlock> withTable(const MarkdownBlock &table) const;

    [[nodiscard]] const MarkdownBlock &block() const { return m_block; }
    [[nodiscard]] bool isTable() const { return !m_prefix.isEmpty(); }
    // Parsed in front of the tail: a table's header and delimiter lines, else nothing.
    [[nodiscard]] const QByteArray &prefix() const { return m_prefix; }
    [[nodiscard]] static constexpr int prefixLines() { return 2; }
    [[nodiscard]] qint64 nextNumber() const { return m_nextNumber; }
    [[nodiscard]] bool parenDelimiter() const { return m_parenDelimiter; }

    // The whole block: the final part followed by what the tail parsed into, or nothing
    // when that is not a continuation of this block.
    [[nodiscard]] std::optional<MarkdownBlock> merged(const MarkdownBlock &rest) const;
    // The marker of the next top-level item of a list.
    [[nodiscard]] QString nextMarker() const;

private:
    MarkdownBlock m_block;
    QByteArray m_prefix;
    qint64 m_nextNumber = 0;
    bool m_parenDelimiter = false;
};

} // namespace zentrik
