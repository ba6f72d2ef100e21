#include "render/opencodeblock.h"

namespace zentrik {

OpenCodeBlock::OpenCodeBlock(qsizetype contentStart, QChar fenceChar, int fenceLength)
    : m_contentStart(contentStart)
    , m_lineStart(contentStart)
    , m_fenceChar(fenceChar)
    , m_fenceLength(fenceLength)
{ }

std::optional<OpenCodeBlock> OpenCodeBlock::open(
    QStringView text, qsizetype contentStart, qsizetype end, QChar fenceChar, int fenceLength)
{
    if (contentStart > end || fenceLength < 3) {
        return std::nullopt;
    }
    OpenCodeBlock block(contentStart, fenceChar, fenceLength);
    if (block.scan(text, end) != end) {
        return std::nullopt;
    }
    return block;
}

bool OpenCodeBlock::extend(QStringView text, qsizetype end, QString &code)
{
    if (scan(text, end) != end) {
        return false;
    }
    if (m_written < m_contentStart || m_written > end) {
        code = this->code(text, end);
    } else {
        // The text shown lacks the final line break of what it was written from.
        if (m_written > m_contentStart && text.at(m_written - 1) == QLatin1Char('\n')) {
            code += QLatin1Char('\n');
        }
        code += text.sliced(m_written, end - m_written);
        if (code.endsWith(QLatin1Char('\n'))) {
            code.chop(1);
        }
    }
    m_written = end;
    return true;
}

std::optional<OpenCodeBlock::Closed> OpenCodeBlock::close(QStringView text, qsizetype end)
{
    const qsizetype fence = scan(text, end);
    if (fence < 0 || fence >= end) {
        return std::nullopt;
    }
    qsizetype lineEnd = fence;
    while (lineEnd < end && text.at(lineEnd) != QLatin1Char('\n') && text.at(lineEnd) != QLatin1Char('\r')) {
        ++lineEnd;
    }
    // cmark closes the block on an unfinished fence line too, so until that line is done
    // the block shows without it.
    qsizetype next = -1;
    if (lineEnd < end && !(text.at(lineEnd) == QLatin1Char('\r') && lineEnd + 1 >= end)) {
        next = text.sliced(lineEnd).startsWith(QLatin1String("\r\n")) ? lineEnd + 2 : lineEnd + 1;
    }
    // The caller shows the block without the fence line, which may yet turn into code.
    m_written = fence;
    return Closed { code(text, fence), next };
}

QString OpenCodeBlock::code(QStringView text, qsizetype end) const
{
    QString code = text.sliced(m_contentStart, end - m_contentStart).toString();
    if (code.endsWith(QLatin1Char('\n'))) {
        code.chop(1);
    }
    return code;
}

bool OpenCodeBlock::isClosingFence(QStringView line, QChar fenceChar, int fenceLength)
{
    qsizetype at = 0;
    while (at < line.size() && at < 3 && line.at(at) == QLatin1Char(' ')) {
        ++at;
    }
    qsizetype run = 0;
    while (at < line.size() && line.at(at) == fenceChar) {
        ++at;
        ++run;
    }
    if (run < fenceLength) {
        return false;
    }
    while (at < line.size() && (line.at(at) == QLatin1Char(' ') || line.at(at) == QLatin1Char('\t'))) {
        ++at;
    }
    return at == line.size();
}

qsizetype OpenCodeBlock::scan(QStringView text, qsizetype end)
{
    qsizetype lineStart = m_lineStart;
    for (qsizetype at = lineStart; at < end; ++at) {
        const QChar c = text.at(at);
        if (c.isNull() || c.isLowSurrogate()) {
            return -1;
        }
        if (c.isHighSurrogate()) {
            if (at + 1 >= end || !text.at(at + 1).isLowSurrogate()) {
                return -1;
            }
            ++at;
        } else if (c == QLatin1Char('\n') || c == QLatin1Char('\r')) {
            if (isClosingFence(text.sliced(lineStart, at - lineStart), m_fenceChar, m_fenceLength)) {
                return lineStart;
            }
            // Only plain line feeds end content lines here; cmark decides about the rest.
            if (c == QLatin1Char('\r')) {
                return -1;
            }
            lineStart = at + 1;
        }
    }
    m_lineStart = lineStart;
    // cmark reads an unfinished last line as a whole one, so it may close the block too.
    if (isClosingFence(text.sliced(lineStart, end - lineStart), m_fenceChar, m_fenceLength)) {
        return lineStart;
    }
    return end;
}

} // namespace zentrik
