#pragma once

#include "tools/imagegeneratorviewmodel.h"

#include <QObject>
#include <QtQml/qqml.h>

// The image studio's view model, under the name its view uses.

namespace zentrik {

// Created by the image studio screen and given the shared APIManager.
struct ImageGeneratorViewModelForeign
{
    Q_GADGET
    QML_FOREIGN(zentrik::ImageGeneratorViewModel)
    QML_NAMED_ELEMENT(ImageGeneratorViewModel)
};

} // namespace zentrik
