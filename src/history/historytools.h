#pragma once

#include <QString>
#include <QStringList>

namespace zentrik::historytool {

// The tools whose conversations the history keeps, as stored and exported.
inline const QString askMeAnything = QStringLiteral("askMeAnything");
inline const QString debugger = QStringLiteral("debugger");
inline const QString sampleData = QStringLiteral("sampleData");
inline const QString pdfChat = QStringLiteral("pdfChat");
inline const QString generator = QStringLiteral("generator");
inline const QString imageStudio = QStringLiteral("imageStudio");

[[nodiscard]] const QStringList &all();
// The tool's name as the window shows it ("Code Debugger"); the stored name when unknown.
[[nodiscard]] QString displayName(const QString &tool);
// The system symbol name of the tool's icon.
[[nodiscard]] QString symbol(const QString &tool);
// The tools the chat verbs and screens go on with: every one but the two one-shot runs.
[[nodiscard]] bool isChat(const QString &tool);

} // namespace zentrik::historytool
