#pragma once

#include <QString>
#include <QStringList>

namespace zentrik {

// A text model of the catalogue: the provider's id (sent in requests), the shown name, a
// short badge (an emoji or "AI") and a one-line description.
struct AIModel
{
    QString id;
    QString name;
    QString icon;
    QString usage;

    friend bool operator==(const AIModel &, const AIModel &) = default;
};

// An image model of the catalogue, with its feature tags.
struct ImageModel
{
    QString id;
    QString name;
    QStringList features;

    friend bool operator==(const ImageModel &, const ImageModel &) = default;
};

} // namespace zentrik
