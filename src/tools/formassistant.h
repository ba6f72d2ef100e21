#pragma once

#include "inputfield.h"
#include "prompttemplate.h"

#include <QList>
#include <QString>
#include <QUuid>

namespace zentrik {

// One form-driven assistant. The four families share this shape: marketing and sales
// entries carry no icon, and every family names its colour (a display colour name such
// as "indigo", resolved by the theme).
struct FormAssistant
{
    QUuid id; // list identity only
    QString icon; // system symbol name; empty for marketing and sales
    QString title; // the assistant's identity everywhere in the program
    QString description;
    QString color;
    QList<InputField> inputs; // in form order
    PromptTemplate promptTemplate;

    // The field with this label, or nullptr.
    [[nodiscard]] const InputField *field(const QString &label) const;
};

using MarketingCategory = FormAssistant;
using SalesCategory = FormAssistant;
using CustomerSupportAgent = FormAssistant;
using HRAgent = FormAssistant;

} // namespace zentrik
