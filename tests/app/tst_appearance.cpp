#include "app/displaycolor.h"
#include "app/settingsviewmodel.h"
#include "app/sidebarmodel.h"
#include "app/symbolglyphs.h"
#include "app/theme.h"
#include "model/apimanager.h"
#include "settings/preferences.h"
#include "support/testregistry.h"
#include "tools/assistantcatalogue.h"
#include "windowharness.h"

#include <QDirIterator>
#include <QFile>
#include <QRawFont>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QtTest>

using namespace zentrik;

// The persisted appearance, the symbol table against the bundled font, and the named
// colours.
class AppearanceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    // Every entry of the table must be a glyph the bundled font really has, or the icon
    // shows as an empty box.
    void everyGlyphIsInTheBundledFont_data()
    {
        QTest::addColumn<QString>("symbol");
        for (const QString &symbol : SymbolGlyphs::symbols()) {
            QTest::newRow(qPrintable(symbol)) << symbol;
        }
        QTest::newRow("fallback") << QString();
    }

    void everyGlyphIsInTheBundledFont()
    {
        QFETCH(QString, symbol);
        QFile file(SymbolGlyphs::iconFontResource);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QRawFont font(file.readAll(), 24);
        QVERIFY(font.isValid());
        const QString glyph = SymbolGlyphs::glyph(symbol);
        QCOMPARE(glyph.toUcs4().size(), 1);
        QVERIFY2(font.supportsCharacter(glyph.toUcs4().constFirst()), qPrintable(symbol));
        QCOMPARE(Theme::loadIconFont(), font.familyName());
    }

    // Every symbol name the program shows, from the catalogue, the settings model and the
    // views themselves, is in the table rather than falling back.
    void everySymbolInUseIsMapped()
    {
        QStringList used;
        for (const Category &category : AssistantCatalogue::categories()) {
            used.append(category.icon);
            for (const AIAgent &agent : category.agents) {
                used.append(agent.icon);
            }
        }
        for (const PromptOption &option : AssistantCatalogue::promptOptions()) {
            used.append(option.icon);
        }
        SidebarModel sidebar;
        for (int row = 0; row < sidebar.rowCount(); ++row) {
            used.append(sidebar.data(sidebar.index(row), SidebarModel::SymbolRole).toString());
        }
        SettingsViewModel settings;
        used.append(settings.howItWorksSymbol());
        settings.toggleHowItWorks();
        used.append(settings.howItWorksSymbol());

        static const QRegularExpression symbolLiteral(QStringLiteral(
            "(?:symbol:|glyph\\()\\s*(?:[^\"\\n]*\\?\\s*)?\"([a-z0-9.]+)\"(?:\\s*:\\s*\"([a-z0-9.]+)\")?"));
        int fromViews = 0;
        QDirIterator views(QStringLiteral(QML_DIR), { QStringLiteral("*.qml") });
        while (views.hasNext()) {
            QFile file(views.next());
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QString source = QString::fromUtf8(file.readAll());
            for (const QRegularExpressionMatch &match : symbolLiteral.globalMatch(source)) {
                used.append(match.captured(1));
                if (match.hasCaptured(2)) {
                    used.append(match.captured(2));
                }
                ++fromViews;
            }
        }
        QVERIFY(fromViews >= 8);
        for (const QString &symbol : std::as_const(used)) {
            QVERIFY2(SymbolGlyphs::codepoint(symbol) != 0, qPrintable(QStringLiteral("unmapped: ") + symbol));
        }
        // The three different spellings of a bolt and a light bulb stay apart.
        QVERIFY(
            SymbolGlyphs::glyph(QStringLiteral("lightbulb")) != SymbolGlyphs::glyph(QStringLiteral("lightbulb.fill")));
        QVERIFY(SymbolGlyphs::glyph(QStringLiteral("doc.on.doc")) != SymbolGlyphs::glyph(QStringLiteral("checkmark")));
    }

    void unknownSymbolsShowTheFallback()
    {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("No icon for the symbol.*sparkles")));
        const QString glyph = SymbolGlyphs::glyph(QStringLiteral("sparkles"));
        QCOMPARE(glyph, QString::fromUcs4(&SymbolGlyphs::fallbackCodepoint, 1));
        QCOMPARE(SymbolGlyphs::codepoint(QStringLiteral("sparkles")), char32_t(0));
        // Reported once, not on every repaint.
        QCOMPARE(SymbolGlyphs::glyph(QStringLiteral("sparkles")), glyph);
    }

    void catalogueColoursAreNamedColours()
    {
        for (const Category &category : AssistantCatalogue::categories()) {
            for (const AIAgent &agent : category.agents) {
                QVERIFY2(isDisplayColorName(agent.color), qPrintable(agent.title + QStringLiteral(": ") + agent.color));
                const QColor light = displayColor(agent.color, false);
                const QColor dark = displayColor(agent.color, true);
                QVERIFY(light.isValid() && dark.isValid());
                QVERIFY(light != displayColor(QStringLiteral("gray"), false));
            }
        }
        QCOMPARE(displayColor(QStringLiteral(" Teal "), false), displayColor(QStringLiteral("teal"), false));
        QCOMPARE(displayColor(QStringLiteral("chartreuse"), true), displayColor(QStringLiteral("gray"), true));
        QVERIFY(!isDisplayColorName(QStringLiteral("chartreuse")));
    }

    // Every colour the views put text in, on every surface it is put on, in both themes.
    void textContrastIsAtLeastFourAndAHalf_data()
    {
        QTest::addColumn<bool>("dark");
        QTest::addColumn<QString>("foreground");
        QTest::addColumn<QString>("background");
        const QStringList surfaces { QStringLiteral("windowColor"), QStringLiteral("cardColor"),
            QStringLiteral("sidebarColor"), QStringLiteral("popupColor") };
        const QList<std::pair<QString, QStringList>> pairs {
            { QStringLiteral("textColor"),
                surfaces
                    + QStringList { QStringLiteral("controlColor"), QStringLiteral("codeBackgroundColor"),
                        QStringLiteral("selectionColor") } },
            { QStringLiteral("secondaryTextColor"), surfaces + QStringList { QStringLiteral("controlColor") } },
            { QStringLiteral("accentColor"), surfaces },
            { QStringLiteral("linkColor"), surfaces + QStringList { QStringLiteral("codeBackgroundColor") } },
            { QStringLiteral("warningColor"), surfaces },
            { QStringLiteral("dangerColor"), surfaces },
            { QStringLiteral("onAccentColor"), { QStringLiteral("accentColor") } },
            { QStringLiteral("onDangerColor"), { QStringLiteral("dangerColor") } },
        };
        for (const bool dark : { false, true }) {
            for (const auto &[foreground, backgrounds] : pairs) {
                for (const QString &background : backgrounds) {
                    QTest::addRow(
                        "%s %s on %s", dark ? "dark" : "light", qPrintable(foreground), qPrintable(background))
                        << dark << foreground << background;
                }
            }
        }
    }

    void textContrastIsAtLeastFourAndAHalf()
    {
        QFETCH(bool, dark);
        QFETCH(QString, foreground);
        QFETCH(QString, background);
        const test::ScopedConfigDir config;
        Theme theme;
        theme.setDarkMode(dark);
        const QColor text = theme.property(qPrintable(foreground)).value<QColor>();
        QColor surface = theme.property(qPrintable(background)).value<QColor>();
        QVERIFY(text.isValid() && surface.isValid());
        // A translucent fill (the selection) is seen over the sidebar it marks.
        if (surface.alphaF() < 1.0) {
            const QColor under = theme.sidebarColor();
            const qreal a = surface.alphaF();
            surface = QColor::fromRgbF(surface.redF() * a + under.redF() * (1 - a),
                surface.greenF() * a + under.greenF() * (1 - a), surface.blueF() * a + under.blueF() * (1 - a));
        }
        const auto luminance = [](const QColor &color) {
            const auto channel = [](qreal c) { return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
            return 0.2126 * channel(color.redF()) + 0.7152 * channel(color.greenF()) + 0.0722 * channel(color.blueF());
        };
        const qreal lighter = std::max(luminance(text), luminance(surface));
        const qreal darker = std::min(luminance(text), luminance(surface));
        const qreal ratio = (lighter + 0.05) / (darker + 0.05);
        QVERIFY2(ratio >= 4.5,
            qPrintable(QStringLiteral("%1 on %2: %3:1").arg(text.name(), surface.name()).arg(ratio, 0, 'f', 2)));
    }
};
ZENTRIK_TEST(AppearanceTest)

#include "tst_appearance.moc"
