#include "app/filedialogcheck.h"

#include "app/applogging.h"

#include <QHash>
#include <QQmlComponent>
#include <QQmlEngine>

namespace zentrik {

namespace {

// Debian ships each QML module as a package named after it.
QString debianPackageOf(const QString &module)
{
    return QStringLiteral("qml6-module-") + module.toLower().replace(QLatin1Char('.'), QLatin1Char('-'));
}

} // namespace

FileDialogCheck::FileDialogCheck(QObject *parent)
    : QObject(parent)
    , m_requiredModule(QStringLiteral("Qt.labs.folderlistmodel"))
{ }

void FileDialogCheck::setRequiredModule(const QString &module)
{
    if (m_requiredModule == module) {
        return;
    }
    m_requiredModule = module;
    Q_EMIT requiredModuleChanged();
}

QString FileDialogCheck::problem()
{
    static QHash<QString, bool> importable;
    auto known = importable.constFind(m_requiredModule);
    if (known == importable.constEnd()) {
        QQmlEngine *engine = qmlEngine(this);
        bool ok = false;
        if (engine != nullptr) {
            QQmlComponent probe(engine);
            probe.setData("import " + m_requiredModule.toUtf8() + "\nimport QtQml\nQtObject {}\n", QUrl());
            ok = probe.isReady();
            if (!ok) {
                qCWarning(lcApp) << "File dialogs are unavailable:" << probe.errorString().trimmed();
            }
        }
        known = importable.insert(m_requiredModule, ok);
    }
    if (*known) {
        return {};
    }
    return tr("The file dialog cannot open because the Qt module %1 is missing. Install the package %2 and "
              "start Zentrik again.")
        .arg(m_requiredModule, debianPackageOf(m_requiredModule));
}

} // namespace zentrik
