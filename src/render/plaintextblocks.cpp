#include "render/plaintextblocks.h"

#include "render/richtextwriter.h"

namespace zentrik {

namespace {

// Appends text[from, to) escaped, each line break as "<br>": "\r\n", "\r" and "\n" alike.
void appendWithBreaks(QString &out, QStringView text, qsizetype from, qsizetype to)
{
    qsizetype run = from;
    for (qsizetype at = from; at < to; ++at) {
        const QChar c = text.at(at);
        if (c != QLatin1Char('\n') && c != QLatin1Char('\r')) {
            continue;
        }
        RichTextWriter::appendEscaped(out, text.sliced(run, at - run));
        // The line feed of a CR LF pair: the carriage return made the break.
        if (c == QLatin1Char('\r') || at == 0 || text.at(at - 1) != QLatin1Char('\r')) {
            out += QLatin1StringView("<br>");
        }
        run = at + 1;
    }
    RichTextWriter::appendEscaped(out, text.sliced(run, to - run));
}

} // namespace

void PlainTextBlocks::append(QStringView text, qsizetype end, QList<MarkdownBlock> &blocks)
{
    while (m_done < end) {
        if (m_blockFill >= blockLength) {
            blocks.append(MarkdownBlock());
            m_blockFill = 0;
        }
        qsizetype take = qMin(end - m_done, blockLength - m_blockFill);
        // A block never ends between the halves of a surrogate pair.
        if (m_done + take < end && text.at(m_done + take - 1).isHighSurrogate()) {
            take = take > 1 ? take - 1 : take + 1;
        }
        appendWithBreaks(blocks.last().text, text, m_done, m_done + take);
        m_done += take;
        m_blockFill += take;
    }
}

} // namespace zentrik
