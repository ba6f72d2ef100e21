#pragma once

#include <QColor>
#include <QString>

namespace zentrik {

// The named display colours of the catalogue ("yellow", "indigo", ...) as colours, with a
// slightly brighter variant for the dark appearance so they keep their contrast there.
// A name outside the palette is grey.
[[nodiscard]] QColor displayColor(const QString &name, bool dark);
[[nodiscard]] bool isDisplayColorName(const QString &name);

} // namespace zentrik
