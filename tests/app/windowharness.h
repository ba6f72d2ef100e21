#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include "support/environment.h"
#include "support/fakeprovider.h"

#include <memory>

class QQmlEngine;
class QQuickItem;
class QQuickWindow;

namespace zentrik {
class GeneratorViewModel;
class ZentrikApp;
} // namespace zentrik

namespace zentrik::test {

// Every QML object under root, visual children and plain QObject children alike (Loaders,
// popups and the window's overlay included), each once.
[[nodiscard]] QList<QObject *> allObjects(QObject *root);
[[nodiscard]] QObject *findObject(QObject *root, const QString &objectName);
[[nodiscard]] QQuickItem *findItem(QObject *root, const QString &objectName);
// The text of every visible item under root that has a non-empty "text" property.
[[nodiscard]] QStringList visibleTexts(QQuickWindow *window);
// Scrolls every Flickable above the item so that the item's centre is in view.
void scrollIntoView(QQuickItem *item);
// Waits until the window has drawn a frame, so that pending layout work is done.
bool waitForFrame(QQuickWindow *window);
// A real mouse click at the item's centre, after scrolling it into view.
[[nodiscard]] bool click(QQuickItem *item);

// With ZENTRIK_SCREENSHOT_DIR set, saves the window as <name>.png at 1280×800 and as
// <name>-800x600.png at 800×600, for the README and for checking the layout at both sizes
// by eye. Does nothing otherwise.
void saveScreenshots(QQuickWindow *window, const QString &name);

// The body of the file dialog Qt Quick draws inside the window while it is up (the popup that
// holds the folder bar), or null.
[[nodiscard]] QQuickItem *openFileDialog(QQuickWindow *window);

// Types the text into the focused item, one key press per character.
void typeText(QQuickWindow *window, const QString &text);
// Clicks a form field of the generator by its label and types the text into it.
[[nodiscard]] bool fillField(QQuickWindow *window, const QString &label, const QString &text);

// Clicks `opener` (a sidebar entry or a card), waits for the screen item `view`, and returns
// the window's object called `viewModel`; null if any of that fails.
[[nodiscard]] QObject *openScreen(
    QQuickWindow *window, const QString &opener, const QString &view, const QString &viewModel);
// The marketing generator, opened from the "Slogan Generator" card, ready to send to the
// fake OpenAI service with a model the generators accept and a key for this run.
[[nodiscard]] GeneratorViewModel *openSloganGenerator(QQuickWindow *window);

// What a window test starts from: its own preferences folder and temporary folder, one fake
// provider behind every provider address, and no licence check; all undone when it goes.
class WindowTestEnvironment
{
public:
    WindowTestEnvironment();

    [[nodiscard]] FakeProvider &fake() { return m_fake; }
    // Where the program's temporary files (the free image model's pictures) go.
    [[nodiscard]] QString tempPath() const { return m_tmp.path(); }

private:
    ScopedConfigDir m_config;
    QTemporaryDir m_tmp;
    FakeProvider m_fake;
    ScopedEnvironment m_environment;
};

// Qt Quick's software renderer, the one the program picks on a machine without a GPU; called
// before the first window, since the scene graph keeps its first choice.
void useSoftwareRenderer();

// Style and import path as the program sets them, for tests that build their own engine.
void prepareEngine(QQmlEngine &engine);

// The real program's window, started as main() starts it.
std::unique_ptr<ZentrikApp> startApp();

} // namespace zentrik::test
