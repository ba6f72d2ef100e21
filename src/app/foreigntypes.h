#pragma once

#include "model/apimanager.h"
#include "model/settingsviewmodel.h"
#include "privacy/piialertviewmodel.h"
#include "render/markdownmodel.h"

#include <QObject>
#include <QtQml/qqml.h>

class QJSEngine;
class QQmlEngine;

// The lower libraries know nothing of QML; these declarations make their view models
// available to the views under the names the views use.

namespace zentrik {

// The shared model-access object: one per engine, living as long as the window.
struct APIManagerForeign
{
    Q_GADGET
    QML_FOREIGN(zentrik::APIManager)
    QML_NAMED_ELEMENT(APIManager)
    QML_SINGLETON

public:
    static APIManager *create(QQmlEngine *engine, QJSEngine *scriptEngine);
};

// Created by the settings screen and given the shared APIManager.
struct SettingsViewModelForeign
{
    Q_GADGET
    QML_FOREIGN(zentrik::SettingsViewModel)
    QML_NAMED_ELEMENT(SettingsViewModel)
};

// One per tool screen that asks before sending personal information.
struct PiiAlertViewModelForeign
{
    Q_GADGET
    QML_FOREIGN(zentrik::PiiAlertViewModel)
    QML_NAMED_ELEMENT(PiiAlertViewModel)
};

// The blocks of a reply; a view model may also hand its own to a reply view.
struct MarkdownModelForeign
{
    Q_GADGET
    QML_FOREIGN(zentrik::MarkdownModel)
    QML_NAMED_ELEMENT(MarkdownModel)
};

} // namespace zentrik
