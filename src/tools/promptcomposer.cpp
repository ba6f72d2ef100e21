#include "promptcomposer.h"

#include <QStringList>

namespace zentrik {

QString composePrompt(
    const PromptTemplate &promptTemplate, const QString &headingWord, const QString &title, const FormInputs &inputs)
{
    QStringList valueLines;
    valueLines.reserve(inputs.size());
    for (auto it = inputs.cbegin(); it != inputs.cend(); ++it) {
        valueLines.append(it.key() + QStringLiteral(": ") + it.value());
    }

    QStringList structureLines;
    structureLines.reserve(promptTemplate.structure.size());
    for (qsizetype i = 0; i < promptTemplate.structure.size(); ++i) {
        structureLines.append(QString::number(i + 1) + QStringLiteral(". ") + promptTemplate.structure.at(i));
    }

    QStringList toneLines;
    toneLines.reserve(promptTemplate.toneGuidelines.size());
    for (const QString &guideline : promptTemplate.toneGuidelines) {
        toneLines.append(QStringLiteral("- ") + guideline);
    }

    QString prompt = promptTemplate.introduction;
    prompt += QStringLiteral("\n\n") + headingWord + QStringLiteral(": ") + title;
    prompt += QLatin1Char('\n');
    prompt += valueLines.join(QLatin1Char('\n'));
    prompt += QStringLiteral("\n\nStructure:\n") + structureLines.join(QLatin1Char('\n'));
    prompt += QStringLiteral("\n\nTone guidelines:\n") + toneLines.join(QLatin1Char('\n'));
    prompt += QStringLiteral("\n\n") + promptTemplate.closing;
    return prompt;
}

} // namespace zentrik
