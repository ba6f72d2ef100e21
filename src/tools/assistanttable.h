#pragma once

#include "formassistant.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

namespace zentrik {

// The assistants of one family in build order, looked up by title. A table is built once
// and never changes, so the pointers find() hands out stay valid for the program's life.
class AssistantTable
{
public:
    AssistantTable() = default;
    explicit AssistantTable(QList<FormAssistant> entries);

    [[nodiscard]] const QList<FormAssistant> &entries() const { return m_entries; }
    [[nodiscard]] qsizetype size() const { return m_entries.size(); }
    [[nodiscard]] QStringList titles() const;
    [[nodiscard]] bool contains(const QString &title) const { return m_index.contains(title); }
    // The assistant of that title, or nullptr.
    [[nodiscard]] const FormAssistant *find(const QString &title) const;

private:
    QList<FormAssistant> m_entries;
    QHash<QString, qsizetype> m_index;
};

// The four families' tables, each built on first use.
[[nodiscard]] const AssistantTable &marketingAssistants();
[[nodiscard]] const AssistantTable &salesAssistants();
[[nodiscard]] const AssistantTable &customerSupportAgents();
[[nodiscard]] const AssistantTable &hrAgents();

} // namespace zentrik
