#include "app/displaycolor.h"

#include <QHash>

#include <utility>

namespace zentrik {

namespace {

using Pair = std::pair<QRgb, QRgb>; // light, dark

const QHash<QString, Pair> &palette()
{
    static const QHash<QString, Pair> colors = {
        { QStringLiteral("red"), { 0xffff3b30, 0xffff453a } },
        { QStringLiteral("orange"), { 0xffff9500, 0xffff9f0a } },
        { QStringLiteral("yellow"), { 0xffffcc00, 0xffffd60a } },
        { QStringLiteral("green"), { 0xff34c759, 0xff30d158 } },
        { QStringLiteral("teal"), { 0xff30b0c7, 0xff40c8e0 } },
        { QStringLiteral("cyan"), { 0xff32ade6, 0xff64d2ff } },
        { QStringLiteral("blue"), { 0xff007aff, 0xff0a84ff } },
        { QStringLiteral("indigo"), { 0xff5856d6, 0xff5e5ce6 } },
        { QStringLiteral("purple"), { 0xffaf52de, 0xffbf5af2 } },
        { QStringLiteral("pink"), { 0xffff2d55, 0xffff375f } },
        { QStringLiteral("gray"), { 0xff8e8e93, 0xff98989d } },
    };
    return colors;
}

} // namespace

QColor displayColor(const QString &name, bool dark)
{
    const auto found = palette().constFind(name.trimmed().toLower());
    const Pair pair = found != palette().constEnd() ? *found : palette().value(QStringLiteral("gray"));
    return QColor::fromRgba(dark ? pair.second : pair.first);
}

bool isDisplayColorName(const QString &name)
{
    return palette().contains(name.trimmed().toLower());
}

} // namespace zentrik
