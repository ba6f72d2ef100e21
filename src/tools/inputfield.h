#pragma once

#include <QString>
#include <QStringList>
#include <QUuid>

#include <optional>

namespace zentrik {

// One field of an assistant's form. The label is both the caption and the key under which
// the entered value is kept, so labels are unique within one assistant.
struct InputField
{
    enum class Type { Text, TextArea, Select };

    QUuid id; // list identity only; fresh for every build of a table
    Type type = Type::Text;
    QString label;
    QString placeholder; // empty: the entry shows no placeholder
    QStringList options; // the choices of a Select field, in display order; empty otherwise

    // The field type as the forms and the command line name it: "text", "textarea", "select".
    [[nodiscard]] static QString typeName(Type type);
    [[nodiscard]] static std::optional<Type> typeFromName(const QString &name);
    [[nodiscard]] QString typeName() const { return typeName(type); }

    [[nodiscard]] static InputField text(const QString &label, const QString &placeholder = {});
    [[nodiscard]] static InputField textArea(const QString &label, const QString &placeholder = {});
    [[nodiscard]] static InputField select(const QString &label, const QStringList &options);
};

// The customer-support and HR families keep records of the very same shape.
using CustomerSupportInputField = InputField;
using HRInputField = InputField;

} // namespace zentrik
