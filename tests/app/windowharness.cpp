#include "windowharness.h"

#include "app/licensegate.h"

#include "app/zentrikapp.h"
#include "model/apimanager.h"
#include "tools/generatorviewmodel.h"

#include <QDir>
#include <QImage>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSet>
#include <QSignalSpy>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(ZentrikPlugin)

namespace zentrik::test {

QList<QObject *> allObjects(QObject *root)
{
    QList<QObject *> found;
    QSet<QObject *> seen;
    QList<QObject *> pending { root };
    if (auto *window = qobject_cast<QQuickWindow *>(root)) {
        pending.append(window->contentItem());
    }
    while (!pending.isEmpty()) {
        QObject *object = pending.takeFirst();
        if (object == nullptr || seen.contains(object)) {
            continue;
        }
        seen.insert(object);
        found.append(object);
        pending.append(object->children());
        if (auto *item = qobject_cast<QQuickItem *>(object)) {
            for (QQuickItem *child : item->childItems()) {
                pending.append(child);
            }
        }
    }
    return found;
}

QObject *findObject(QObject *root, const QString &objectName)
{
    for (QObject *object : allObjects(root)) {
        if (object->objectName() == objectName) {
            return object;
        }
    }
    return nullptr;
}

QQuickItem *findItem(QObject *root, const QString &objectName)
{
    for (QObject *object : allObjects(root)) {
        auto *item = qobject_cast<QQuickItem *>(object);
        if (item && item->objectName() == objectName) {
            return item;
        }
    }
    return nullptr;
}

QStringList visibleTexts(QQuickWindow *window)
{
    QStringList texts;
    for (QObject *object : allObjects(window)) {
        auto *item = qobject_cast<QQuickItem *>(object);
        if (!item || !item->isVisible() || item->window() != window) {
            continue;
        }
        const QString text = item->property("text").toString();
        if (!text.isEmpty()) {
            texts.append(text);
        }
    }
    return texts;
}

void scrollIntoView(QQuickItem *item)
{
    for (QQuickItem *ancestor = item->parentItem(); ancestor; ancestor = ancestor->parentItem()) {
        if (!ancestor->inherits("QQuickFlickable")) {
            continue;
        }
        auto *content = ancestor->property("contentItem").value<QQuickItem *>();
        if (!content) {
            continue;
        }
        // A list's content starts at originY, which moves as it estimates unseen rows again.
        const auto number = [ancestor](const char *name) { return ancestor->property(name).toReal(); };
        const QPointF centre = item->mapToItem(content, QPointF(item->width() / 2, item->height() / 2));
        const qreal minY = number("originY") - number("topMargin");
        const qreal maxY
            = qMax(minY, number("originY") + number("contentHeight") + number("bottomMargin") - ancestor->height());
        ancestor->setProperty("contentY", qBound(minY, centre.y() - ancestor->height() / 2, maxY));
    }
}

bool waitForFrame(QQuickWindow *window)
{
    QSignalSpy swapped(window, &QQuickWindow::frameSwapped);
    window->update();
    return swapped.wait(2000);
}

bool click(QQuickItem *item)
{
    // A list view puts its header and its rows into the window a moment after making them.
    if (!item || !QTest::qWaitFor([item] { return item->window() != nullptr && item->isVisible(); }, 2000)) {
        return false;
    }
    // Layouts settle when a frame is prepared; only then do positions hold.
    waitForFrame(item->window());
    scrollIntoView(item);
    waitForFrame(item->window());
    const QPointF centre = item->mapToScene(QPointF(item->width() / 2, item->height() / 2));
    const QRectF windowRect(QPointF(0, 0), item->window()->size());
    if (!windowRect.contains(centre)) {
        return false;
    }
    QTest::mouseClick(item->window(), Qt::LeftButton, Qt::NoModifier, centre.toPoint());
    return true;
}

void saveScreenshots(QQuickWindow *window, const QString &name)
{
    const QString directory = qEnvironmentVariable("ZENTRIK_SCREENSHOT_DIR");
    if (directory.isEmpty() || window == nullptr) {
        return;
    }
    const QSize original = window->size();
    for (const auto &[size, suffix] :
        { std::pair { QSize(1280, 800), QString() }, std::pair { QSize(800, 600), QStringLiteral("-800x600") } }) {
        window->resize(size);
        (void)QTest::qWaitFor([window, size] { return window->size() == size; });
        for (int frame = 0; frame < 3; ++frame) { // layouts and images settle over a few frames
            waitForFrame(window);
        }
        const QString path = QDir(directory).filePath(name + suffix + QStringLiteral(".png"));
        if (!window->grabWindow().save(path)) {
            qWarning("Could not write %s", qPrintable(path));
        }
    }
    window->resize(original);
}

QQuickItem *openFileDialog(QQuickWindow *window)
{
    for (QObject *object : allObjects(window)) {
        auto *item = qobject_cast<QQuickItem *>(object);
        if (!item || !item->isVisible() || !QByteArray(item->metaObject()->className()).contains("BreadcrumbBar")) {
            continue;
        }
        for (QQuickItem *ancestor = item; ancestor; ancestor = ancestor->parentItem()) {
            if (ancestor->inherits("QQuickPopupItem")) {
                return ancestor;
            }
        }
    }
    return nullptr;
}

void typeText(QQuickWindow *window, const QString &text)
{
    for (const QChar character : text) {
        QTest::keyClick(window, character.toLatin1());
    }
}

bool fillField(QQuickWindow *window, const QString &label, const QString &text)
{
    if (!click(findItem(window, QStringLiteral("field:") + label))) {
        return false;
    }
    typeText(window, text);
    return true;
}

QObject *openScreen(QQuickWindow *window, const QString &opener, const QString &view, const QString &viewModel)
{
    if (!click(findItem(window, opener)) || !QTest::qWaitFor([&] { return findItem(window, view) != nullptr; })) {
        return nullptr;
    }
    return findObject(window, viewModel);
}

GeneratorViewModel *openSloganGenerator(QQuickWindow *window)
{
    auto *generator
        = qobject_cast<GeneratorViewModel *>(openScreen(window, QStringLiteral("agentCard:Slogan Generator"),
            QStringLiteral("generatorView"), QStringLiteral("generatorViewModel")));
    if (generator == nullptr || generator->apiManager() == nullptr) {
        return nullptr;
    }
    generator->apiManager()->setSelectedTextModel(QStringLiteral("gpt-3.5-turbo-1106"));
    generator->apiManager()->overrideUserKeys(QStringLiteral("sk-window-test"), QString(), QString());
    return generator;
}

WindowTestEnvironment::WindowTestEnvironment()
{
    m_environment.set(LicenseGate::urlVariable, QString());
    m_environment.set("TMPDIR", m_tmp.path());
    // No window test asks the real local model servers' ports; a test that wants an offer
    // names its own.
    m_environment.set("ZENTRIK_LOCAL_SERVERS", QString());
    for (const char *variable :
        { "ZENTRIK_OPENAI_BASE_URL", "ZENTRIK_ANTHROPIC_BASE_URL", "ZENTRIK_OPENROUTER_BASE_URL",
            "ZENTRIK_TOGETHER_BASE_URL", "ZENTRIK_FAL_QUEUE_URL", "ZENTRIK_FAL_REST_URL" }) {
        m_environment.set(variable, m_fake.baseUrl().toString());
    }
}

// Where controls have gone missing before: the software renderer runs no shader effects.
void useSoftwareRenderer()
{
    static const bool chosen = [] {
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
        return true;
    }();
    Q_UNUSED(chosen)
}

void prepareEngine(QQmlEngine &engine)
{
    useSoftwareRenderer();
    ZentrikApp::configureApplication();
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
}

std::unique_ptr<ZentrikApp> startApp()
{
    useSoftwareRenderer();
    ZentrikApp::configureApplication();
    auto app = std::make_unique<ZentrikApp>();
    if (!app->load()) {
        return nullptr;
    }
    if (!QTest::qWaitForWindowExposed(app->window())) {
        return nullptr;
    }
    // Keys go to the active window only; without a window manager nothing activates it.
    app->window()->requestActivate();
    if (!QTest::qWaitForWindowActive(app->window())) {
        return nullptr;
    }
    return app;
}

} // namespace zentrik::test
