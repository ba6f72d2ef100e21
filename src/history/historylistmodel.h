#pragma once

#include "history/historyservice.h"
#include "history/historytypes.h"

#include <QAbstractListModel>
#include <QDateTime>
#include <QPointer>
#include <QTimer>
#include <QtQmlIntegration>

namespace zentrik {

// The stored conversations for a list: the newest first (of one tool, or of all), or the
// ranked results of a search with the matching words highlighted. Follows the history as
// this process changes it; rows are moved, inserted and removed rather than the whole list
// reset, so a view keeps its place. Deleting a conversation can be undone for a while.
class HistoryListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(zentrik::HistoryService *history READ history WRITE setHistory NOTIFY historyChanged FINAL)
    // Only this tool's conversations; every tool's when empty.
    Q_PROPERTY(QString tool READ tool WRITE setTool NOTIFY toolChanged FINAL)
    // Ranked search results while not empty.
    Q_PROPERTY(QString searchText READ searchText WRITE setSearchText NOTIFY searchTextChanged FINAL)
    Q_PROPERTY(int limit READ limit WRITE setLimit NOTIFY limitChanged FINAL)
    Q_PROPERTY(int count READ count NOTIFY countChanged FINAL)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged FINAL)
    // The undo bar after a deletion.
    Q_PROPERTY(bool canUndo READ canUndo NOTIFY undoChanged FINAL)
    Q_PROPERTY(QString undoText READ undoText NOTIFY undoChanged FINAL)

public:
    enum Role {
        IdRole = Qt::UserRole + 1, // the stable id the tools open a conversation by
        NumberRole, // the short number the command line shows
        ToolRole,
        ToolNameRole,
        SymbolRole,
        TitleRole,
        PreviewRole, // the first line of the first message
        SnippetRole, // search results: the best passage, HTML with the matches in <b>
        UpdatedRole, // QDateTime
        TimeTextRole, // "14:05", a weekday, or a date
        SectionRole, // "Today", "Yesterday", "Previous 7 days", "Older"
        MessageCountRole,
        AssistantRole, // generator runs: the assistant's title, which names the screen to open
    };
    Q_ENUM(Role)

    explicit HistoryListModel(QObject *parent = nullptr);
    ~HistoryListModel() override;

    [[nodiscard]] int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] HistoryService *history() const { return m_history; }
    void setHistory(HistoryService *history);
    [[nodiscard]] QString tool() const { return m_tool; }
    void setTool(const QString &tool);
    [[nodiscard]] QString searchText() const { return m_searchText; }
    void setSearchText(const QString &text);
    [[nodiscard]] int limit() const { return m_limit; }
    void setLimit(int limit);
    [[nodiscard]] int count() const { return int(m_rows.size()); }
    [[nodiscard]] bool isLoading() const { return m_isLoading; }
    [[nodiscard]] bool canUndo() const { return !m_undoTitle.isEmpty(); }
    [[nodiscard]] QString undoText() const;

    Q_INVOKABLE void refresh();
    Q_INVOKABLE void rename(const QString &id, const QString &title);
    // Deletes the conversation at once; undoRemove() puts it back until the undo bar goes.
    Q_INVOKABLE void remove(const QString &id);
    Q_INVOKABLE void undoRemove();
    // The undo bar went away: the deletion stays, and the kept picture of an image run goes.
    Q_INVOKABLE void dismissUndo();
    [[nodiscard]] Q_INVOKABLE int indexOf(const QString &id) const;

    // The heading a conversation last changed at `time` goes under, seen on `today`.
    [[nodiscard]] static QString sectionFor(const QDateTime &time, const QDate &today);
    // The snippet's matches (between SearchHit's markers) in <b>, the rest escaped.
    [[nodiscard]] static QString highlightedHtml(const QString &snippet);

    static constexpr int undoMs = 8000;

Q_SIGNALS:
    void historyChanged();
    void toolChanged();
    void searchTextChanged();
    void limitChanged();
    void countChanged();
    void isLoadingChanged();
    void undoChanged();

private:
    struct Row
    {
        ConversationRecord conversation;
        QString snippet;
    };
    void scheduleRefresh();
    void apply(const QList<Row> &rows);
    void setLoading(bool loading);
    void clearUndo();

    QPointer<HistoryService> m_history;
    QString m_tool;
    QString m_searchText;
    int m_limit = 200;
    QList<Row> m_rows;
    bool m_isLoading = false;
    quint64 m_generation = 0;
    QTimer m_refreshTimer;
    QTimer m_undoTimer;
    QString m_undoTitle;
    QList<ConversationRecord> m_removed; // what undo puts back
    bool m_restoreWhenTaken = false;
    quint64 m_undoToken = 0; // the deletion the undo bar is about
};

} // namespace zentrik
