#pragma once

#include "history/historytypes.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <variant>

namespace zentrik::historyformat {

// The export formats. JSON is for moving history elsewhere and back (docs/history-format.md
// describes it); Markdown is for reading.
inline constexpr int jsonVersion = 1;
inline const QString jsonFormatName = QStringLiteral("zentrik-history");
// Files larger than this are refused by the import rather than read into memory.
inline constexpr qint64 largestImport = qint64(512) * 1024 * 1024;

[[nodiscard]] QByteArray toJson(const QList<ConversationRecord> &conversations);
[[nodiscard]] QString toMarkdown(const QList<ConversationRecord> &conversations);
// The conversations of a JSON export, or why the file cannot be imported (one line).
[[nodiscard]] std::variant<QList<ConversationRecord>, QString> fromJson(const QByteArray &json);

// A time as the JSON gives it: ISO 8601 in UTC with milliseconds.
[[nodiscard]] QString isoTime(qint64 ms);

} // namespace zentrik::historyformat
