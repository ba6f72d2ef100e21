#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include "support/fakeprovider.h"

#include <memory>

class QQmlEngine;
class QQuickItem;
class QQuickWindow;

namespace zentrik {
class ZentrikApp;
}

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

// The preferences of one test in a directory of their own, removed afterwards.
class ScopedConfigDir
{
public:
    ScopedConfigDir();
    ~ScopedConfigDir();
    ScopedConfigDir(const ScopedConfigDir &) = delete;
    ScopedConfigDir &operator=(const ScopedConfigDir &) = delete;

    [[nodiscard]] QString path() const { return m_dir.path(); }

private:
    QTemporaryDir m_dir;
};

// What a window test starts from: its own preferences folder, a fake provider behind the
// OpenAI, Anthropic and OpenRouter addresses, and no licence check; all undone when it goes.
class WindowTestEnvironment
{
public:
    WindowTestEnvironment();
    ~WindowTestEnvironment();
    WindowTestEnvironment(const WindowTestEnvironment &) = delete;
    WindowTestEnvironment &operator=(const WindowTestEnvironment &) = delete;

    [[nodiscard]] FakeProvider &fake() { return m_fake; }

private:
    ScopedConfigDir m_config;
    FakeProvider m_fake;
};

// Style and import path as the program sets them, for tests that build their own engine.
void prepareEngine(QQmlEngine &engine);

// The real program's window, started as main() starts it.
std::unique_ptr<ZentrikApp> startApp();

} // namespace zentrik::test
