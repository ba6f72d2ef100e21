#pragma once

#include <QString>
#include <QStringView>

#include <optional>

namespace zentrik {

// The paragraph a streamed reply is writing, at the top level or as the last thing in a
// list item or quote. While pieces add to its last line without breaking it, the blocks
// keep their shape and only the paragraph's inline markup can change. The text before a
// "clean" point, where every emphasis, code span, link and bracket has closed, can no
// longer change either, so each piece parses only the text after that point (the live
// part) and puts its rich text between what comes before and after it in the block.
class OpenParagraph
{
public:
    // Where the paragraph's rich text lives in the last block.
    enum class Target { BlockText, LastItemText };

    // A top-level paragraph starting at paragraphStart; all of it is live at first.
    // lineStart: where its last, unfinished line begins; end: how far the text is rendered.
    [[nodiscard]] static std::optional<OpenParagraph> openTopLevel(
        QStringView text, qsizetype paragraphStart, qsizetype lineStart, qsizetype end);
    // The last paragraph inside the last block of the tail that starts at tailStart (a list
    // or a quote): parses the tail up to the last word of the line once to freeze the rest.
    [[nodiscard]] static std::optional<OpenParagraph> openNested(
        QStringView text, qsizetype tailStart, qsizetype lineStart, qsizetype end, Target target);

    // A paragraph that has just begun, on the line from lineStart (list marker included)
    // whose content, from contentStart to end, is paragraph text: its rich text comes from
    // that content alone, without the blocks around it. Sets richText.
    [[nodiscard]] static std::optional<OpenParagraph> openLine(
        QStringView text, qsizetype lineStart, qsizetype contentStart, qsizetype end, Target target, QString &richText);

    [[nodiscard]] Target target() const { return m_target; }

    // Brings the rich text that holds the paragraph up to end. rich is what this paragraph
    // wrote last (or what the parse that opened it gave), so mostly only the new text is
    // appended to it. False when the new text breaks the line or the paragraph needs to be
    // parsed as a whole; rich may have changed then.
    [[nodiscard]] bool extend(QStringView text, qsizetype end, QString &rich);

    // When the new text ends the paragraph's line: sets rich to the rich text as it is with
    // that line if the paragraph ends there, and returns where the next line begins.
    [[nodiscard]] std::optional<qsizetype> endLine(QStringView text, qsizetype end, QString &rich);

private:
    OpenParagraph(qsizetype liveStart, qsizetype lineStart, qsizetype end, Target target);
    [[nodiscard]] static qsizetype freezePoint(QStringView text, qsizetype from, qsizetype lineStart, qsizetype end);
    [[nodiscard]] bool canAppendPlainly(QStringView text, qsizetype end) const;
    void appendPlainly(QStringView text, qsizetype end);
    void freezeAtWord(QStringView text, qsizetype end);
    void tryFreeze(QStringView text, qsizetype end);
    // Notes that the rich text before the live part and the live part, taken together, may
    // differ from what was last written from this position on.
    void changedFrom(qsizetype position) { m_changedFrom = qMin(m_changedFrom, position); }

    qsizetype m_lineStart;
    qsizetype m_checked; // the text before this holds no line break
    qsizetype m_liveStart; // parsed again on every piece
    QString m_head; // rich text before the live part
    QString m_tail; // rich text after it: closing tags of the containers
    // The live part's rich text as far as m_liveEnd, less its trailing white space, which
    // only shows once more text follows it.
    QString m_live;
    QString m_liveSpace;
    QString m_previousLive; // a spare buffer for rendering the live part again
    qsizetype m_liveEnd = -1;
    bool m_liveClean = false; // nothing in the live part waits for a partner
    qsizetype m_nextFreeze = 0;
    // m_head + m_live as last written agrees with the present one up to here; 0 until the
    // paragraph has written its rich text once.
    qsizetype m_changedFrom = 0;
    Target m_target;
};

} // namespace zentrik
