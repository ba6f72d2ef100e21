#pragma once

#include <QString>
#include <QUuid>

namespace zentrik {

// A dashboard shortcut: a sentence that opens a tool or a category.
struct PromptOption
{
    QUuid id; // list identity only
    QString icon; // system symbol name
    QString text;
    QString destination; // a standalone tool's name or a category's name
};

} // namespace zentrik
