#include "history/historytools.h"

#include <QCoreApplication>

namespace zentrik::historytool {

const QStringList &all()
{
    static const QStringList tools { askMeAnything, debugger, sampleData, pdfChat, generator, imageStudio };
    return tools;
}

QString displayName(const QString &tool)
{
    const auto tr = [](const char *text) { return QCoreApplication::translate("zentrik::historytool", text); };
    if (tool == askMeAnything) {
        return tr("Ask Me Anything");
    }
    if (tool == debugger) {
        return tr("Code Debugger");
    }
    if (tool == sampleData) {
        return tr("Sample Data Generator");
    }
    if (tool == pdfChat) {
        return tr("Chat With Your PDFs");
    }
    if (tool == generator) {
        return tr("Generator");
    }
    if (tool == imageStudio) {
        return tr("Image Creation Studio");
    }
    return tool;
}

QString symbol(const QString &tool)
{
    if (tool == askMeAnything) {
        return QStringLiteral("lightbulb.fill");
    }
    if (tool == debugger) {
        return QStringLiteral("ladybug");
    }
    if (tool == sampleData) {
        return QStringLiteral("square.stack.3d.up");
    }
    if (tool == pdfChat) {
        return QStringLiteral("doc.text.magnifyingglass");
    }
    if (tool == imageStudio) {
        return QStringLiteral("photo");
    }
    return QStringLiteral("doc.text");
}

bool isChat(const QString &tool)
{
    return tool == askMeAnything || tool == debugger || tool == sampleData || tool == pdfChat;
}

} // namespace zentrik::historytool
