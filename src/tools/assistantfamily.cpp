#include "assistantfamily.h"

#include <QCoreApplication>

namespace zentrik {

AssistantFamily::AssistantFamily(Id id, const char *identifier, const char *name, const char *headingWord,
    TableAccessor table, bool checksModelAndKey, bool confirmsPersonalInformation, const char *pickerPrompt)
    : m_id(id)
    , m_identifier(QString::fromLatin1(identifier))
    , m_name(QString::fromLatin1(name))
    , m_headingWord(QString::fromLatin1(headingWord))
    , m_table(table)
    , m_checksModelAndKey(checksModelAndKey)
    , m_confirmsPersonalInformation(confirmsPersonalInformation)
    , m_pickerPrompt(pickerPrompt)
{ }

const AssistantFamily &AssistantFamily::marketing()
{
    static const AssistantFamily family(Id::Marketing, "marketing", "Marketing", "Category", &marketingAssistants, true,
        true, QT_TRANSLATE_NOOP("zentrik::AssistantFamily", "Select a category"));
    return family;
}

const AssistantFamily &AssistantFamily::sales()
{
    static const AssistantFamily family(Id::Sales, "sales", "Sales", "Category", &salesAssistants, true, true,
        QT_TRANSLATE_NOOP("zentrik::AssistantFamily", "Select a category"));
    return family;
}

const AssistantFamily &AssistantFamily::customerSupport()
{
    static const AssistantFamily family(Id::CustomerSupport, "customer-support", "Customer Support", "Agent",
        &customerSupportAgents, false, false, QT_TRANSLATE_NOOP("zentrik::AssistantFamily", "Select a support agent"));
    return family;
}

const AssistantFamily &AssistantFamily::humanResources()
{
    static const AssistantFamily family(Id::HumanResources, "human-resources", "Human Resources", "Agent", &hrAgents,
        true, true, QT_TRANSLATE_NOOP("zentrik::AssistantFamily", "Select an HR agent"));
    return family;
}

const AssistantFamily &AssistantFamily::get(Id id)
{
    switch (id) {
    case Id::Marketing:
        return marketing();
    case Id::Sales:
        return sales();
    case Id::CustomerSupport:
        return customerSupport();
    case Id::HumanResources:
        return humanResources();
    }
    return marketing();
}

const QList<const AssistantFamily *> &AssistantFamily::all()
{
    static const QList<const AssistantFamily *> families
        = { &marketing(), &sales(), &customerSupport(), &humanResources() };
    return families;
}

const AssistantFamily *AssistantFamily::containing(const QString &title)
{
    for (const AssistantFamily *family : all()) {
        if (family->table().contains(title)) {
            return family;
        }
    }
    return nullptr;
}

const AssistantFamily *AssistantFamily::forCategory(const QString &categoryName)
{
    for (const AssistantFamily *family : all()) {
        if (family->name() == categoryName) {
            return family;
        }
    }
    return nullptr;
}

const AssistantFamily *AssistantFamily::forIdentifier(const QString &identifier)
{
    for (const AssistantFamily *family : all()) {
        if (family->identifier() == identifier) {
            return family;
        }
    }
    return nullptr;
}

QString AssistantFamily::pickerPrompt() const
{
    return QCoreApplication::translate("zentrik::AssistantFamily", m_pickerPrompt);
}

QString AssistantFamily::composePrompt(const QString &title, const FormInputs &inputs) const
{
    const FormAssistant *assistant = table().find(title);
    if (assistant == nullptr) {
        return {};
    }
    return zentrik::composePrompt(assistant->promptTemplate, m_headingWord, title, inputs);
}

} // namespace zentrik
