#pragma once

#include "app/contentviewmodel.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QQuickWindow>
#include <QUrl>

#include <memory>

class QQmlApplicationEngine;

namespace zentrik {

// The desktop program: one QML engine showing ContentView in one window. main() only
// creates the application object and hands over to run(); tests use the same object to
// start the real window.
class ZentrikApp : public QObject
{
    Q_OBJECT

public:
    explicit ZentrikApp(QObject *parent = nullptr);
    ~ZentrikApp() override;

    // The application's identity and the Quick Controls style; once, before any window.
    static void configureApplication();
    [[nodiscard]] static QUrl contentViewUrl();

    // Loads ContentView; false (with the reason logged) when it cannot be shown.
    bool load();
    [[nodiscard]] QQmlApplicationEngine *engine() const { return m_engine.get(); }
    [[nodiscard]] QQuickWindow *window() const { return m_window; }
    // The window's navigation: made here and handed to ContentView, so that the program
    // steers the window without searching its item tree.
    [[nodiscard]] ContentViewModel *navigation() { return &m_navigation; }

    // Shows a screen at start: "Settings", an assistant's title, a category or a tool.
    void openAtStart(const QString &destination);

    // Prints how long after the start the first frame was shown, then opens every screen
    // once and quits, so that the peak memory of a full tour can be read from outside.
    void measureStartup(const QElapsedTimer &sinceMain);

    // The whole program; returns the exit code.
    static int run(int argc, char **argv);

private:
    void startHistory();
    void tourScreens();
    void detectLocalServers();

    // Declared before the engine, which goes first and takes every binding to it along.
    ContentViewModel m_navigation;
    std::unique_ptr<QQmlApplicationEngine> m_engine;
    QPointer<QQuickWindow> m_window;
};

} // namespace zentrik
