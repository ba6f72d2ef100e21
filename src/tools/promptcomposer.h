#pragma once

#include "prompttemplate.h"

#include <QMap>
#include <QString>

namespace zentrik {

// The values of a form keyed by field label. An ordered map, so the same form always gives
// the same prompt: values enter it alphabetically by label, not in form order. A field
// that was never touched has no entry; one that was cleared has an empty value.
using FormInputs = QMap<QString, QString>;

// Builds the one user message a form-driven assistant sends: the introduction, the
// heading ("Category" or "Agent") with the assistant's title, one "label: value" line per
// entry, the numbered structure, the bulleted tone guidelines and the closing.
// No trailing line feed.
[[nodiscard]] QString composePrompt(
    const PromptTemplate &promptTemplate, const QString &headingWord, const QString &title, const FormInputs &inputs);

} // namespace zentrik
