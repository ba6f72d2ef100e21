#pragma once

#include "assistanttable.h"
#include "promptcomposer.h"

#include <QList>
#include <QString>

namespace zentrik {

// One family of form-driven assistants and the few ways its generator screen differs from
// the others: the heading word its prompts put before the title, whether Generate first
// checks the model choice and its key, and whether the prompt goes through the personal
// information confirmation. Customer support does neither: a missing key is reported by
// the request itself, and its tickets are sent as written.
class AssistantFamily
{
public:
    enum class Id { Marketing, Sales, CustomerSupport, HumanResources };

    [[nodiscard]] static const AssistantFamily &marketing();
    [[nodiscard]] static const AssistantFamily &sales();
    [[nodiscard]] static const AssistantFamily &customerSupport();
    [[nodiscard]] static const AssistantFamily &humanResources();
    [[nodiscard]] static const AssistantFamily &get(Id id);
    // The four families in catalogue order.
    [[nodiscard]] static const QList<const AssistantFamily *> &all();
    // The family whose table holds this title, or nullptr.
    [[nodiscard]] static const AssistantFamily *containing(const QString &title);
    // The family of a catalogue category ("Marketing", "Human Resources", ...), or nullptr.
    [[nodiscard]] static const AssistantFamily *forCategory(const QString &categoryName);
    // The family of an identifier ("marketing", "customer-support", ...), or nullptr.
    [[nodiscard]] static const AssistantFamily *forIdentifier(const QString &identifier);

    [[nodiscard]] Id id() const { return m_id; }
    // Stable lower-case name for the command line and machine-readable output.
    [[nodiscard]] QString identifier() const { return m_identifier; }
    // The catalogue category the family's cards sit in.
    [[nodiscard]] QString name() const { return m_name; }
    [[nodiscard]] QString headingWord() const { return m_headingWord; }
    [[nodiscard]] const AssistantTable &table() const { return m_table(); }
    [[nodiscard]] bool checksModelAndKey() const { return m_checksModelAndKey; }
    [[nodiscard]] bool confirmsPersonalInformation() const { return m_confirmsPersonalInformation; }
    // What the assistant picker shows while nothing is selected.
    [[nodiscard]] QString pickerPrompt() const;

    // The prompt for the assistant of that title, or the empty text when the family has
    // no such assistant (nothing is then sent).
    [[nodiscard]] QString composePrompt(const QString &title, const FormInputs &inputs) const;

private:
    using TableAccessor = const AssistantTable &(*)();

    AssistantFamily(Id id, const char *identifier, const char *name, const char *headingWord, TableAccessor table,
        bool checksModelAndKey, bool confirmsPersonalInformation, const char *pickerPrompt);

    Id m_id;
    QString m_identifier;
    QString m_name;
    QString m_headingWord;
    TableAccessor m_table;
    bool m_checksModelAndKey;
    bool m_confirmsPersonalInformation;
    const char *m_pickerPrompt;
};

} // namespace zentrik
