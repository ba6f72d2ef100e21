#pragma once

#include "model/aimodel.h"

#include <QList>

// The fixed model catalogues, built once on first use, in the order the pickers show them.
namespace zentrik::ModelCatalog {
[[nodiscard]] const QList<AIModel> &textModels();
[[nodiscard]] const QList<ImageModel> &imageModels();

inline const QString defaultTextModel = QStringLiteral("gpt-4o-mini");
inline const QString defaultImageModel = QStringLiteral("fal-ai/flux-pro");
} // namespace zentrik::ModelCatalog
