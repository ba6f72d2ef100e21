#include "assistanttable.h"

namespace zentrik {

AssistantTable::AssistantTable(QList<FormAssistant> entries)
    : m_entries(std::move(entries))
{
    m_index.reserve(m_entries.size());
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        // Should a title ever repeat, the first entry keeps it.
        if (!m_index.contains(m_entries.at(i).title)) {
            m_index.insert(m_entries.at(i).title, i);
        }
    }
}

QStringList AssistantTable::titles() const
{
    QStringList result;
    result.reserve(m_entries.size());
    for (const FormAssistant &entry : m_entries) {
        result.append(entry.title);
    }
    return result;
}

const FormAssistant *AssistantTable::find(const QString &title) const
{
    const auto at = m_index.constFind(title);
    return at == m_index.constEnd() ? nullptr : &m_entries.at(*at);
}

} // namespace zentrik
