#include "app/navigationitem.h"

#include <QMetaEnum>

namespace zentrik {

QDebug operator<<(QDebug debug, const NavigationItem &item)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << "NavigationItem(" << QMetaEnum::fromType<NavigationItem::Kind>().valueToKey(int(item.kind()));
    if (!item.name().isEmpty()) {
        debug << ", " << item.name();
    }
    return debug << ')';
}

} // namespace zentrik
