#pragma once

#include <QString>
#include <QStringView>

#include <optional>

namespace zentrik {

// A top-level fenced code block still being streamed. Until its closing fence arrives its
// text is exactly the lines after the opening fence, so a new piece only has to be checked
// for a closing fence instead of parsing the block again.
class OpenCodeBlock
{
public:
    // contentStart: where the line after the opening fence begins in text; end: how far
    // the text is rendered. Nothing when the block is already closed, or holds characters
    // only cmark should judge (a carriage return, a NUL, half a surrogate pair).
    [[nodiscard]] static std::optional<OpenCodeBlock> open(
        QStringView text, qsizetype contentStart, qsizetype end, QChar fenceChar, int fenceLength);

    // Brings the block's text, code, up to end: code is what this block wrote last (or what
    // the parse that opened it gave), so only the new text is appended to it. False when the
    // new text may close the block or needs cmark to decide.
    [[nodiscard]] bool extend(QStringView text, qsizetype end, QString &code);

    struct Closed
    {
        QString code; // the block's final text
        qsizetype next; // where the line after the closing fence begins; -1 while the
                        // fence's line is unfinished and may still turn into code
    };
    // When the new text closes the block with a fence: its text, which the caller shows, and
    // where the rest begins.
    [[nodiscard]] std::optional<Closed> close(QStringView text, qsizetype end);

    // A closing fence: up to three spaces, at least fenceLength fence characters, then
    // nothing but spaces and tabs.
    [[nodiscard]] static bool isClosingFence(QStringView line, QChar fenceChar, int fenceLength);

private:
    OpenCodeBlock(qsizetype contentStart, QChar fenceChar, int fenceLength);
    // Checks the lines from the unfinished one to end. Returns where a closing fence line
    // begins, end when there is none, or -1 when the text needs cmark to decide.
    [[nodiscard]] qsizetype scan(QStringView text, qsizetype end);
    [[nodiscard]] QString code(QStringView text, qsizetype end) const;

    qsizetype m_contentStart;
    qsizetype m_lineStart; // the start of the last, unfinished line
    qsizetype m_written = -1; // how far the text this block last wrote reaches
    QChar m_fenceChar;
    int m_fenceLength;
};

} // namespace zentrik
