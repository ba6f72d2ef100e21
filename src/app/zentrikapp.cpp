#include "app/zentrikapp.h"

#include "app/applogging.h"
#include "app/sidebarmodel.h"
#include "app/theme.h"
#include "buildconfig.h"
#include "history/historyservice.h"
#include "model/apimanager.h"
#include "tools/assistantcatalogue.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QTimer>

#include <cstdio>
#include <ctime>
#include <functional>
#include <unistd.h>
#include <utility>

namespace zentrik {

namespace {

const QString importPath = QStringLiteral("qrc:/qt/qml");

// Milliseconds since the kernel started this process, so that the figure includes loading
// the libraries before main().
double millisecondsSinceExec()
{
    QFile stat(QStringLiteral("/proc/self/stat"));
    if (!stat.open(QIODevice::ReadOnly)) {
        return -1;
    }
    const QByteArray line = stat.readAll();
    // Field 22 (start time, in clock ticks since boot) counts from after the command name,
    // which sits in parentheses and may hold spaces.
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    constexpr int startTimeField = 22 - 3;
    if (fields.size() <= startTimeField) {
        return -1;
    }
    const double startTicks = fields.at(startTimeField).toDouble();
    timespec now {};
    clock_gettime(CLOCK_BOOTTIME, &now);
    const double nowMs = double(now.tv_sec) * 1000.0 + double(now.tv_nsec) / 1.0e6;
    return nowMs - startTicks * 1000.0 / double(sysconf(_SC_CLK_TCK));
}

} // namespace

ZentrikApp::ZentrikApp(QObject *parent)
    : QObject(parent)
{ }

ZentrikApp::~ZentrikApp() = default;

void ZentrikApp::configureApplication()
{
    QCoreApplication::setOrganizationName(QStringLiteral("Zentrik"));
    QCoreApplication::setApplicationName(QStringLiteral("Zentrik"));
    QCoreApplication::setApplicationVersion(QString::fromLatin1(build::version));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Zentrik"));
    // The installed launcher's name: Wayland compositors match the window to it for the icon.
    QGuiApplication::setDesktopFileName(QStringLiteral("app.zentrik.Zentrik"));
    // The style can be chosen only before the first engine loads a control.
    static const bool styled = [] {
        QQuickStyle::setStyle(QStringLiteral("Material"));
        return true;
    }();
    Q_UNUSED(styled)
    Theme::loadIconFont();
}

QUrl ZentrikApp::contentViewUrl()
{
    return QUrl(importPath + QStringLiteral("/Zentrik/ContentView.qml"));
}

bool ZentrikApp::load()
{
    m_engine = std::make_unique<QQmlApplicationEngine>();
    m_engine->addImportPath(importPath);
    m_engine->setInitialProperties({ { QStringLiteral("navigation"), QVariant::fromValue(&m_navigation) } });
    m_engine->load(contentViewUrl());
    const QList<QObject *> roots = m_engine->rootObjects();
    m_window = roots.isEmpty() ? nullptr : qobject_cast<QQuickWindow *>(roots.constFirst());
    if (!m_window) {
        qCCritical(lcApp) << "The main window could not be created";
        return false;
    }
    // Asking the local ports and opening the history wait for the first frame, so that they
    // never delay it; neither blocks. frameSwapped comes from the render thread.
    const auto once = static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection);
    connect(m_window, &QQuickWindow::frameSwapped, this, &ZentrikApp::detectLocalServers, once);
    connect(m_window, &QQuickWindow::frameSwapped, this, &ZentrikApp::startHistory, once);
    return true;
}

void ZentrikApp::detectLocalServers()
{
    if (!m_engine) {
        return;
    }
    auto *manager = m_engine->singletonInstance<APIManager *>(qmlTypeId("Zentrik.Model", 1, 0, "APIManager"));
    if (manager != nullptr) {
        manager->localServers()->detect();
    }
}

void ZentrikApp::startHistory()
{
    // The database is opened (and checked, and migrated) on the history's own thread; screens
    // that asked for it earlier wait for it. It is opened now rather than at the first save,
    // so that a file that had to be moved aside is reported at once.
    const int type = qmlTypeId("Zentrik.History", 1, 0, "HistoryService");
    if (auto *history = m_engine ? m_engine->singletonInstance<HistoryService *>(type) : nullptr) {
        history->start();
        history->refreshCount();
    } else {
        qCWarning(lcApp) << "The conversation history is not available to the window";
    }
}

void ZentrikApp::openAtStart(const QString &destination)
{
    if (destination == QStringLiteral("Settings")) {
        m_navigation.showSettings();
    } else if (AssistantCatalogue::agent(destination) != nullptr) {
        m_navigation.openAgent(destination);
    } else {
        m_navigation.open(destination);
    }
}

void ZentrikApp::measureStartup(const QElapsedTimer &sinceMain)
{
    if (!m_window) {
        return;
    }
    // frameSwapped comes from the render thread; several may be queued before the first
    // is handled, so only the first one counts.
    auto seen = std::make_shared<bool>(false);
    connect(m_window, &QQuickWindow::frameSwapped, this, [this, sinceMain, seen] {
        if (std::exchange(*seen, true)) {
            return;
        }
        std::printf("first frame: %.0f ms after exec, %lld ms after main()\n", millisecondsSinceExec(),
            static_cast<long long>(sinceMain.elapsed()));
        std::fflush(stdout);
        QTimer::singleShot(0, this, &ZentrikApp::tourScreens);
    });
}

void ZentrikApp::tourScreens()
{
    auto *navigation = &m_navigation;
    // Every sidebar entry, then one card of each kind of tool.
    QList<std::function<void()>> steps;
    SidebarModel entries;
    for (int row = 0; row < entries.rowCount(); ++row) {
        const NavigationItem item = entries.item(row);
        steps.append([navigation, item] { navigation->select(item); });
    }
    for (const Category &category : AssistantCatalogue::categories()) {
        for (const AIAgent &agent : category.agents) {
            steps.append([navigation, title = agent.title] {
                navigation->showHome();
                navigation->openAgent(title);
            });
        }
    }
    auto *timer = new QTimer(this);
    timer->setInterval(50);
    connect(timer, &QTimer::timeout, this, [timer, steps, index = qsizetype(0)]() mutable {
        if (index == steps.size()) {
            timer->stop();
            std::printf("visited %lld screens\n", static_cast<long long>(steps.size()));
            std::fflush(stdout);
            QCoreApplication::quit();
            return;
        }
        steps.at(index++)();
    });
    timer->start();
}

int ZentrikApp::run(int argc, char **argv)
{
    QElapsedTimer sinceMain;
    sinceMain.start();
    const QGuiApplication application(argc, argv);
    configureApplication();
    // Without a GPU (no DRM render node: virtual machines, Xvfb, many remote sessions) Mesa's
    // software OpenGL takes about twice the time to the first frame and twice the memory of
    // Qt Quick's own software renderer. QT_QUICK_BACKEND, when set, still decides.
    if (qEnvironmentVariableIsEmpty("QT_QUICK_BACKEND") && qEnvironmentVariableIsEmpty("QSG_RHI_BACKEND")
        && QDir(QStringLiteral("/dev/dri")).entryList({ QStringLiteral("renderD*") }, QDir::System).isEmpty()) {
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    }

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Zentrik, the desktop AI assistant toolbox"));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption measure(QStringLiteral("measure-startup"),
        QStringLiteral("Print the time to the first frame, open every screen once, then quit."));
    parser.addOption(measure);
    const QCommandLineOption open(QStringLiteral("open"),
        QStringLiteral("Start on a tool, a category, an assistant (by its title) or \"Settings\"."),
        QStringLiteral("destination"));
    parser.addOption(open);
    parser.process(application);

    ZentrikApp app;
    if (!app.load()) {
        return 1;
    }
    if (parser.isSet(open)) {
        app.openAtStart(parser.value(open));
    }
    if (parser.isSet(measure) || qEnvironmentVariableIsSet("ZENTRIK_MEASURE_STARTUP")) {
        app.measureStartup(sinceMain);
    }
    return QGuiApplication::exec();
}

} // namespace zentrik
