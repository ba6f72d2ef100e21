#pragma once

#include "aiagent.h"

#include <QList>
#include <QString>
#include <QUuid>

namespace zentrik {

// One group of cards on the dashboard and in the sidebar.
struct Category
{
    QUuid id; // list identity only
    QString name;
    QString icon; // system symbol name
    QList<AIAgent> agents; // in display order
};

} // namespace zentrik
