#include "formarguments.h"

#include "verb.h"

#include <algorithm>

namespace zentrik::cli {

namespace {

struct Found
{
    const AssistantFamily *family = nullptr;
    const FormAssistant *assistant = nullptr;
};

QStringList allTitles()
{
    QStringList titles;
    for (const AssistantFamily *family : AssistantFamily::all()) {
        titles.append(family->table().titles());
    }
    return titles;
}

// The exact title, else the one title that differs only in case.
Found findAssistant(const QString &title)
{
    QString match = title;
    if (AssistantFamily::containing(title) == nullptr) {
        for (const QString &candidate : allTitles()) {
            if (candidate.compare(title, Qt::CaseInsensitive) == 0) {
                match = candidate;
            }
        }
    }
    const AssistantFamily *family = AssistantFamily::containing(match);
    return family == nullptr ? Found {} : Found { family, family->table().find(match) };
}

QStringList wordsOf(const QString &text)
{
    QStringList words(1);
    for (const QChar c : text) {
        if (c.isLetterOrNumber()) {
            words.last().append(c);
        } else if (!words.last().isEmpty()) {
            words.append(QString());
        }
    }
    if (words.last().isEmpty()) {
        words.removeLast();
    }
    return words;
}

// Two words are alike when one begins with the other ("Slogans", "slogan").
bool alike(const QString &typed, const QString &word)
{
    constexpr qsizetype shortest = 3;
    return typed.size() >= shortest && word.size() >= shortest
        && (typed.startsWith(word, Qt::CaseInsensitive) || word.startsWith(typed, Qt::CaseInsensitive));
}

// Titles sharing a word with what was typed, so a near miss names what was meant.
QStringList similarTitles(const QString &title)
{
    const QStringList typedWords = wordsOf(title);
    QStringList similar;
    for (const QString &candidate : allTitles()) {
        const QStringList candidateWords = wordsOf(candidate);
        const bool shares = std::any_of(typedWords.cbegin(), typedWords.cend(), [&](const QString &typed) {
            return std::any_of(candidateWords.cbegin(), candidateWords.cend(),
                [&](const QString &word) { return alike(typed, word); });
        });
        if (shares) {
            similar.append(candidate);
        }
    }
    return similar;
}

QString quotedList(const QStringList &items)
{
    QStringList quoted;
    for (const QString &item : items) {
        quoted.append(QStringLiteral("\"%1\"").arg(item));
    }
    return quoted.join(QStringLiteral(", "));
}

int unknownAssistant(const QString &verbName, const QString &title)
{
    const QStringList similar = similarTitles(title);
    constexpr qsizetype mostSuggestions = 4;
    if (!similar.isEmpty() && similar.size() <= mostSuggestions) {
        return usageError(
            verbName, QStringLiteral("unknown assistant \"%1\"; did you mean %2?").arg(title, quotedList(similar)));
    }
    return usageError(verbName,
        QStringLiteral("unknown assistant \"%1\"; 'zentrik-cli assistants' lists the %2 titles")
            .arg(title)
            .arg(allTitles().size()));
}

const InputField *findField(const FormAssistant &assistant, const QString &label)
{
    if (const InputField *field = assistant.field(label)) {
        return field;
    }
    for (const InputField &field : assistant.inputs) {
        if (field.label.compare(label, Qt::CaseInsensitive) == 0) {
            return &field;
        }
    }
    return nullptr;
}

QStringList labelsOf(const FormAssistant &assistant)
{
    QStringList labels;
    for (const InputField &field : assistant.inputs) {
        labels.append(field.label);
    }
    return labels;
}

// A select takes one of its options (any case); the form offers nothing else.
std::optional<QString> selectValue(const InputField &field, const QString &value)
{
    for (const QString &option : field.options) {
        if (option.compare(value, Qt::CaseInsensitive) == 0) {
            return option;
        }
    }
    return std::nullopt;
}

} // namespace

std::variant<FormSelection, int> parseFormArguments(
    const QString &verbName, const QString &title, const QStringList &assignments)
{
    const Found found = findAssistant(title);
    if (found.assistant == nullptr) {
        return unknownAssistant(verbName, title);
    }
    FormSelection selection { found.family, found.assistant, {} };
    for (const QString &assignment : assignments) {
        const qsizetype equals = assignment.indexOf(QLatin1Char('='));
        if (equals <= 0) {
            return usageError(verbName, QStringLiteral("--field takes LABEL=VALUE, got \"%1\"").arg(assignment));
        }
        const QString label = assignment.left(equals);
        QString value = assignment.mid(equals + 1);
        const InputField *field = findField(*found.assistant, label);
        if (field == nullptr) {
            return usageError(verbName,
                QStringLiteral("\"%1\" has no field \"%2\"; its fields are %3")
                    .arg(found.assistant->title, label, quotedList(labelsOf(*found.assistant))));
        }
        if (field->type == InputField::Type::Select) {
            const std::optional<QString> option = selectValue(*field, value);
            if (!option) {
                return usageError(verbName,
                    QStringLiteral("\"%1\" is not an option of \"%2\"; choose one of %3")
                        .arg(value, field->label, quotedList(field->options)));
            }
            value = *option;
        }
        selection.inputs.insert(field->label, value);
    }
    return selection;
}

} // namespace zentrik::cli
