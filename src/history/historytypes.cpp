#include "history/historytypes.h"

#include <QUuid>

namespace zentrik {

bool ConversationRecord::sameContent(const ConversationRecord &other) const
{
    return uid == other.uid && tool == other.tool && title == other.title && createdMs == other.createdMs
        && updatedMs == other.updatedMs && pdfPath == other.pdfPath && pdfSha256 == other.pdfSha256
        && generator == other.generator && image == other.image && messages == other.messages;
}

QString newHistoryUid()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
}

QString firstLine(const QString &text, qsizetype longest)
{
    const QString trimmed = text.trimmed();
    const qsizetype end = trimmed.indexOf(QLatin1Char('\n'));
    QString line = (end < 0 ? trimmed : trimmed.left(end)).simplified();
    if (line.size() > longest) {
        line = line.left(longest - 1).trimmed() + QChar(0x2026);
    }
    return line;
}

QString titleFromText(const QString &text)
{
    constexpr qsizetype longest = 60;
    QString line = firstLine(text, text.size() + 1);
    if (line.size() <= longest) {
        return line;
    }
    // Cut at the last blank that keeps a reasonable part of the line, else mid-word.
    qsizetype cut = line.lastIndexOf(QLatin1Char(' '), longest - 1);
    if (cut < longest / 2) {
        cut = longest - 1;
    }
    return line.left(cut).trimmed() + QChar(0x2026);
}

} // namespace zentrik
