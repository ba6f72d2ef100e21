#pragma once

#include <QString>
#include <QStringList>

namespace zentrik {

// The fixed parts of an assistant's prompt; the composer numbers the structure items and
// bullets the tone guidelines.
struct PromptTemplate
{
    QString introduction;
    QStringList structure;
    QStringList toneGuidelines;
    QString closing;
};

using CustomerSupportPromptTemplate = PromptTemplate;
using HRPromptTemplate = PromptTemplate;

} // namespace zentrik
