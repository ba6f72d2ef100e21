#pragma once

#include "settings/preferences.h"

#include <QColor>
#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace zentrik {

// The window's appearance, shared by every view: light or dark (persisted under
// "isDarkMode", light when absent), the few colours the Material palette does not supply,
// the named display colours of the catalogue, the fonts, and the symbol-to-glyph table.
class Theme : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool isDarkMode READ isDarkMode WRITE setDarkMode NOTIFY isDarkModeChanged FINAL)
    Q_PROPERTY(QColor windowColor READ windowColor NOTIFY isDarkModeChanged FINAL)
    Q_PROPERTY(QColor sidebarColor READ sidebarColor NOTIFY isDarkModeChanged FINAL)
    Q_PROPERTY(QColor cardColor READ cardColor NOTIFY isDarkModeChanged FINAL)
    Q_PROPERTY(QColor cardBorderColor READ cardBorderColor NOTIFY isDarkModeChanged FINAL)
    Q_PROPERTY(QColor textColor READ textColor NOTIFY isDarkModeChanged FINAL)
    Q_PROPERTY(QColor secondaryTextColor READ secondaryTextColor NOTIFY isDarkModeChanged FINAL)
    Q_PROPERTY(QColor accentColor READ accentColor NOTIFY isDarkModeChanged FINAL)
    Q_PROPERTY(QColor selectionColor READ selectionColor NOTIFY isDarkModeChanged FINAL)
    Q_PROPERTY(QColor hoverColor READ hoverColor NOTIFY isDarkModeChanged FINAL)
    Q_PROPERTY(QColor codeBackgroundColor READ codeBackgroundColor NOTIFY isDarkModeChanged FINAL)
    Q_PROPERTY(QColor warningColor READ warningColor NOTIFY isDarkModeChanged FINAL)
    Q_PROPERTY(QColor onAccentColor READ onAccentColor NOTIFY isDarkModeChanged FINAL)
    Q_PROPERTY(QColor dangerColor READ dangerColor NOTIFY isDarkModeChanged FINAL)
    Q_PROPERTY(QColor onDangerColor READ onDangerColor NOTIFY isDarkModeChanged FINAL)
    Q_PROPERTY(QColor linkColor READ linkColor NOTIFY isDarkModeChanged FINAL)
    Q_PROPERTY(QColor popupColor READ popupColor NOTIFY isDarkModeChanged FINAL)
    Q_PROPERTY(QColor controlColor READ controlColor NOTIFY isDarkModeChanged FINAL)
    Q_PROPERTY(QColor focusColor READ focusColor NOTIFY isDarkModeChanged FINAL)
    Q_PROPERTY(QString iconFontFamily READ iconFontFamily CONSTANT FINAL)
    Q_PROPERTY(QString emojiFontFamily READ emojiFontFamily CONSTANT FINAL)
    Q_PROPERTY(QString monospaceFontFamily READ monospaceFontFamily CONSTANT FINAL)

public:
    explicit Theme(QObject *parent = nullptr);

    [[nodiscard]] bool isDarkMode() const { return m_isDarkMode; }
    // Writes the choice at once, so it survives a crash as well as a restart.
    void setDarkMode(bool dark);
    Q_INVOKABLE void toggleDarkMode();

    [[nodiscard]] QColor windowColor() const;
    [[nodiscard]] QColor sidebarColor() const;
    [[nodiscard]] QColor cardColor() const;
    [[nodiscard]] QColor cardBorderColor() const;
    [[nodiscard]] QColor textColor() const;
    [[nodiscard]] QColor secondaryTextColor() const;
    [[nodiscard]] QColor accentColor() const;
    [[nodiscard]] QColor selectionColor() const;
    [[nodiscard]] QColor hoverColor() const;
    [[nodiscard]] QColor codeBackgroundColor() const;
    [[nodiscard]] QColor warningColor() const;
    // Text and symbols drawn on an accent or danger fill.
    [[nodiscard]] QColor onAccentColor() const;
    [[nodiscard]] QColor dangerColor() const;
    [[nodiscard]] QColor onDangerColor() const;
    [[nodiscard]] QColor linkColor() const;
    // The body of every popup and dialog: always opaque, so nothing behind shows through.
    [[nodiscard]] QColor popupColor() const;
    // The fill of a button that is not the screen's main action.
    [[nodiscard]] QColor controlColor() const;
    // The ring around the control that has keyboard focus.
    [[nodiscard]] QColor focusColor() const;

    [[nodiscard]] QString iconFontFamily() const { return m_iconFontFamily; }
    [[nodiscard]] QString emojiFontFamily() const;
    [[nodiscard]] QString monospaceFontFamily() const;

    // The Material Icons glyph for a system symbol name.
    [[nodiscard]] Q_INVOKABLE QString glyph(const QString &symbol) const;
    // A named display colour of the catalogue in the current appearance.
    [[nodiscard]] Q_INVOKABLE QColor color(const QString &name) const;

    // Registers the bundled icon font with the application (once) and returns its family.
    static QString loadIconFont();

Q_SIGNALS:
    void isDarkModeChanged();

private:
    [[nodiscard]] QColor pick(QRgb light, QRgb dark) const;
    void applyLinkColor() const;

    Preferences m_preferences;
    bool m_isDarkMode = false;
    QString m_iconFontFamily;
};

} // namespace zentrik
