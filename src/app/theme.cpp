#include "app/theme.h"

#include "app/applogging.h"
#include "app/displaycolor.h"
#include "app/symbolglyphs.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QPalette>

namespace zentrik {

namespace {
const QString darkModeKey = QString::fromLatin1(darkModePreference);
} // namespace

Theme::Theme(QObject *parent)
    : QObject(parent)
    , m_isDarkMode(m_preferences.boolean(darkModeKey, false))
    , m_iconFontFamily(loadIconFont())
{
    applyLinkColor();
}

// Rich text takes the colour of its links from the application's palette when it is laid
// out; the default pure blue is unreadable on the dark surfaces.
void Theme::applyLinkColor() const
{
    if (qobject_cast<QGuiApplication *>(QCoreApplication::instance()) == nullptr) {
        return;
    }
    QPalette palette = QGuiApplication::palette();
    palette.setColor(QPalette::Link, linkColor());
    palette.setColor(QPalette::LinkVisited, linkColor());
    QGuiApplication::setPalette(palette);
}

void Theme::setDarkMode(bool dark)
{
    if (m_isDarkMode == dark) {
        return;
    }
    m_isDarkMode = dark;
    // The window still switches; only the next start would not remember it.
    if (!m_preferences.setBoolean(darkModeKey, dark)) {
        qCWarning(lcApp).noquote() << "The appearance could not be saved:" << m_preferences.errorString();
    }
    applyLinkColor();
    Q_EMIT isDarkModeChanged();
}

void Theme::toggleDarkMode()
{
    setDarkMode(!m_isDarkMode);
}

QColor Theme::pick(QRgb light, QRgb dark) const
{
    return QColor::fromRgba(m_isDarkMode ? dark : light);
}

QColor Theme::windowColor() const
{
    return pick(0xfff7f7f9, 0xff1c1c1e);
}

QColor Theme::sidebarColor() const
{
    return pick(0xffeeeef2, 0xff232326);
}

QColor Theme::cardColor() const
{
    return pick(0xffffffff, 0xff2c2c2e);
}

QColor Theme::cardBorderColor() const
{
    return pick(0xffdedee3, 0xff3a3a3c);
}

QColor Theme::textColor() const
{
    return pick(0xff1c1c1e, 0xfff2f2f7);
}

QColor Theme::secondaryTextColor() const
{
    return pick(0xff5f5f66, 0xffaeaeb2);
}

// The accent and warning colours are darker (light) or lighter (dark) than the catalogue's
// blue and orange, so that text in them keeps a contrast of at least 4.5:1 on every surface.
QColor Theme::accentColor() const
{
    return pick(0xff0062cc, 0xff4da3ff);
}

QColor Theme::selectionColor() const
{
    return pick(0x33007aff, 0x400a84ff);
}

QColor Theme::hoverColor() const
{
    return pick(0x14007aff, 0x1f0a84ff);
}

QColor Theme::codeBackgroundColor() const
{
    return pick(0xfff0f0f3, 0xff18181a);
}

QColor Theme::warningColor() const
{
    return pick(0xffa84b00, 0xffff9f0a);
}

QColor Theme::onAccentColor() const
{
    return pick(0xffffffff, 0xff1c1c1e);
}

QColor Theme::dangerColor() const
{
    return pick(0xffc4001a, 0xffff6b6b);
}

QColor Theme::onDangerColor() const
{
    return pick(0xffffffff, 0xff1c1c1e);
}

QColor Theme::linkColor() const
{
    return accentColor();
}

QColor Theme::popupColor() const
{
    return pick(0xffffffff, 0xff2c2c2e);
}

QColor Theme::controlColor() const
{
    return pick(0xffe9e9ee, 0xff3a3a3c);
}

QColor Theme::focusColor() const
{
    return accentColor();
}

QString Theme::emojiFontFamily() const
{
    return QStringLiteral("Noto Color Emoji");
}

QString Theme::monospaceFontFamily() const
{
    return QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
}

QString Theme::glyph(const QString &symbol) const
{
    return SymbolGlyphs::glyph(symbol);
}

QColor Theme::color(const QString &name) const
{
    return displayColor(name, m_isDarkMode);
}

QString Theme::loadIconFont()
{
    static const QString family = [] {
        const int id = QFontDatabase::addApplicationFont(SymbolGlyphs::iconFontResource);
        const QStringList families = QFontDatabase::applicationFontFamilies(id);
        if (families.isEmpty()) {
            qCWarning(lcApp) << "The icon font could not be loaded; icons show as boxes";
            return QStringLiteral("Material Icons");
        }
        return families.constFirst();
    }();
    return family;
}

} // namespace zentrik
