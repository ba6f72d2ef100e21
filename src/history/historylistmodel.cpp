#include "history/historylistmodel.h"

#include "history/historyservice.h"
#include "history/historytools.h"

#include <QLocale>

namespace zentrik {

HistoryListModel::HistoryListModel(QObject *parent)
    : QAbstractListModel(parent)
{
    // Saves come in bursts (a question, then its reply): one query answers them all.
    m_refreshTimer.setSingleShot(true);
    m_refreshTimer.setInterval(50);
    connect(&m_refreshTimer, &QTimer::timeout, this, &HistoryListModel::refresh);
    m_undoTimer.setSingleShot(true);
    m_undoTimer.setInterval(undoMs);
    connect(&m_undoTimer, &QTimer::timeout, this, &HistoryListModel::dismissUndo);
}

HistoryListModel::~HistoryListModel()
{
    if (canUndo() && m_history) {
        m_history->removeUnusedPictures();
    }
}

int HistoryListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant HistoryListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return {};
    }
    const Row &row = m_rows.at(index.row());
    const ConversationRecord &conversation = row.conversation;
    const QDateTime updated = QDateTime::fromMSecsSinceEpoch(conversation.updatedMs);
    switch (role) {
    case IdRole:
        return conversation.uid;
    case NumberRole:
        return conversation.number;
    case ToolRole:
        return conversation.tool;
    case ToolNameRole:
        return conversation.generator ? conversation.generator->assistant : historytool::displayName(conversation.tool);
    case SymbolRole:
        return historytool::symbol(conversation.tool);
    case Qt::DisplayRole:
    case TitleRole:
        return conversation.title;
    case PreviewRole:
        return conversation.preview;
    case SnippetRole:
        return highlightedHtml(row.snippet);
    case UpdatedRole:
        return updated;
    case TimeTextRole: {
        const QDate today = QDate::currentDate();
        const QLocale locale;
        if (updated.date() == today) {
            // Some locales' short format (the C locale's among them) still has the seconds.
            QString format = locale.timeFormat(QLocale::ShortFormat);
            format.remove(QStringLiteral(":ss"));
            return locale.toString(updated.time(), format);
        }
        if (updated.date().daysTo(today) < 7) {
            return locale.dayName(updated.date().dayOfWeek(), QLocale::ShortFormat);
        }
        return locale.toString(updated.date(), QLocale::ShortFormat);
    }
    case SectionRole:
        return sectionFor(updated, QDate::currentDate());
    case MessageCountRole:
        return conversation.messageCount;
    case AssistantRole:
        return conversation.generator ? conversation.generator->assistant : QString();
    default:
        return {};
    }
}

QHash<int, QByteArray> HistoryListModel::roleNames() const
{
    return { { IdRole, "conversationId" }, { NumberRole, "number" }, { ToolRole, "tool" }, { ToolNameRole, "toolName" },
        { SymbolRole, "symbol" }, { TitleRole, "title" }, { PreviewRole, "preview" }, { SnippetRole, "snippet" },
        { UpdatedRole, "updated" }, { TimeTextRole, "timeText" }, { SectionRole, "section" },
        { MessageCountRole, "messageCount" }, { AssistantRole, "assistant" } };
}

void HistoryListModel::setHistory(HistoryService *history)
{
    if (m_history == history) {
        return;
    }
    if (m_history) {
        disconnect(m_history, nullptr, this, nullptr);
    }
    m_history = history;
    if (m_history) {
        connect(m_history, &HistoryService::changed, this, &HistoryListModel::scheduleRefresh);
    }
    Q_EMIT historyChanged();
    refresh();
}

void HistoryListModel::setTool(const QString &tool)
{
    if (m_tool == tool) {
        return;
    }
    m_tool = tool;
    Q_EMIT toolChanged();
    refresh();
}

void HistoryListModel::setSearchText(const QString &text)
{
    if (m_searchText == text) {
        return;
    }
    m_searchText = text;
    Q_EMIT searchTextChanged();
    refresh();
}

void HistoryListModel::setLimit(int limit)
{
    if (m_limit == limit || limit <= 0) {
        return;
    }
    m_limit = limit;
    Q_EMIT limitChanged();
    refresh();
}

QString HistoryListModel::undoText() const
{
    return m_undoTitle.isEmpty() ? QString() : tr("Deleted \u201C%1\u201D").arg(m_undoTitle);
}

void HistoryListModel::scheduleRefresh()
{
    m_refreshTimer.start();
}

void HistoryListModel::refresh()
{
    m_refreshTimer.stop();
    if (!m_history) {
        apply({});
        return;
    }
    const quint64 generation = ++m_generation;
    setLoading(true);
    if (m_searchText.trimmed().isEmpty()) {
        m_history->list(m_tool, m_limit, this, [this, generation](const QList<ConversationRecord> &conversations) {
            if (generation != m_generation) {
                return; // a newer query is on its way
            }
            QList<Row> rows;
            for (const ConversationRecord &conversation : conversations) {
                rows.append({ conversation, {} });
            }
            apply(rows);
            setLoading(false);
        });
        return;
    }
    m_history->search(m_searchText, m_tool, m_limit, this, [this, generation](const QList<SearchHit> &hits) {
        if (generation != m_generation) {
            return;
        }
        QList<Row> rows;
        for (const SearchHit &hit : hits) {
            rows.append({ hit.conversation, hit.snippet });
        }
        apply(rows);
        setLoading(false);
    });
}

void HistoryListModel::apply(const QList<Row> &rows)
{
    const int before = count();
    for (int i = 0; i < rows.size(); ++i) {
        int found = -1;
        for (int j = i; j < m_rows.size(); ++j) {
            if (m_rows.at(j).conversation.uid == rows.at(i).conversation.uid) {
                found = j;
                break;
            }
        }
        if (found < 0) {
            beginInsertRows({}, i, i);
            m_rows.insert(i, rows.at(i));
            endInsertRows();
            continue;
        }
        if (found > i) {
            beginMoveRows({}, found, found, {}, i);
            m_rows.move(found, i);
            endMoveRows();
        }
        Row &current = m_rows[i];
        const Row &fresh = rows.at(i);
        if (!current.conversation.sameContent(fresh.conversation) || current.snippet != fresh.snippet
            || current.conversation.preview != fresh.conversation.preview
            || current.conversation.messageCount != fresh.conversation.messageCount) {
            current = fresh;
            Q_EMIT dataChanged(index(i), index(i));
        }
    }
    if (m_rows.size() > rows.size()) {
        beginRemoveRows({}, int(rows.size()), int(m_rows.size()) - 1);
        m_rows.resize(rows.size());
        endRemoveRows();
    }
    if (count() != before) {
        Q_EMIT countChanged();
    }
}

void HistoryListModel::setLoading(bool loading)
{
    if (m_isLoading == loading) {
        return;
    }
    m_isLoading = loading;
    Q_EMIT isLoadingChanged();
}

int HistoryListModel::indexOf(const QString &id) const
{
    for (int row = 0; row < m_rows.size(); ++row) {
        if (m_rows.at(row).conversation.uid == id) {
            return row;
        }
    }
    return -1;
}

void HistoryListModel::rename(const QString &id, const QString &title)
{
    const int row = indexOf(id);
    if (row < 0 || m_history == nullptr || title.simplified().isEmpty()) {
        return;
    }
    m_rows[row].conversation.title = title.simplified();
    Q_EMIT dataChanged(index(row), index(row), { TitleRole, Qt::DisplayRole });
    m_history->rename(id, title);
}

void HistoryListModel::remove(const QString &id)
{
    const int row = indexOf(id);
    if (row < 0 || !m_history) {
        return;
    }
    if (canUndo()) {
        dismissUndo(); // only the latest deletion can be undone
    }
    const QString title = m_rows.at(row).conversation.title;
    beginRemoveRows({}, row, row);
    m_rows.removeAt(row);
    endRemoveRows();
    Q_EMIT countChanged();

    m_removed.clear();
    m_restoreWhenTaken = false;
    m_undoTitle = title.isEmpty() ? tr("Untitled") : title;
    const quint64 token = ++m_undoToken;
    m_history->take(id, this, [this, token](const std::optional<ConversationRecord> &taken, const QString &) {
        if (token != m_undoToken || (!canUndo() && !m_restoreWhenTaken)) {
            return; // dismissed, or followed by another deletion, while this one ran
        }
        if (!taken) {
            clearUndo();
            refresh();
            return;
        }
        m_removed = { *taken };
        if (m_restoreWhenTaken) {
            m_restoreWhenTaken = false;
            m_history->restore(m_removed, this, [this](bool) { refresh(); });
            m_removed.clear();
        }
    });
    m_undoTimer.start();
    Q_EMIT undoChanged();
}

void HistoryListModel::undoRemove()
{
    if (!canUndo() || !m_history) {
        return;
    }
    if (m_removed.isEmpty()) {
        m_restoreWhenTaken = true; // the deletion is still running; put it back once it has
    } else {
        m_history->restore(m_removed, this, [this](bool) { refresh(); });
    }
    clearUndo();
}

void HistoryListModel::dismissUndo()
{
    if (!canUndo()) {
        return;
    }
    clearUndo();
    m_restoreWhenTaken = false;
    if (m_history) {
        m_history->removeUnusedPictures();
    }
}

void HistoryListModel::clearUndo()
{
    m_undoTimer.stop();
    m_removed.clear();
    if (!m_undoTitle.isEmpty()) {
        m_undoTitle.clear();
        Q_EMIT undoChanged();
    }
}

QString HistoryListModel::sectionFor(const QDateTime &time, const QDate &today)
{
    const qint64 days = time.date().daysTo(today);
    if (days <= 0) {
        return tr("Today");
    }
    if (days == 1) {
        return tr("Yesterday");
    }
    if (days <= 7) {
        return tr("Previous 7 days");
    }
    return tr("Older");
}

QString HistoryListModel::highlightedHtml(const QString &snippet)
{
    return snippet.toHtmlEscaped()
        .replace(SearchHit::matchStart, QStringLiteral("<b>"))
        .replace(SearchHit::matchEnd, QStringLiteral("</b>"));
}

} // namespace zentrik
