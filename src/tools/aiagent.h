#pragma once

#include <QString>
#include <QUuid>

namespace zentrik {

// One card of the catalogue. The title names the assistant exactly as its tool does;
// identity is the title, never the icon (several cards share one).
struct AIAgent
{
    QUuid id; // list identity only
    QString icon; // system symbol name
    QString title;
    QString description;
    QString color; // display colour name
};

} // namespace zentrik
