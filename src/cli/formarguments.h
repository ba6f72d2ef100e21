#pragma once

#include "tools/assistantfamily.h"

#include <QStringList>

#include <variant>

namespace zentrik::cli {

// A form-driven assistant picked on the command line with its --field values.
struct FormSelection
{
    const AssistantFamily *family = nullptr;
    const FormAssistant *assistant = nullptr;
    FormInputs inputs;
};

// Finds the assistant by title (any case) and checks each LABEL=VALUE against its fields
// (labels in any case; a select takes one of its options). On a mistake it prints the
// usage error for `verb` and gives its exit code.
[[nodiscard]] std::variant<FormSelection, int> parseFormArguments(
    const QString &verb, const QString &title, const QStringList &assignments);

} // namespace zentrik::cli
