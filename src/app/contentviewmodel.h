#pragma once

#include "app/navigationitem.h"
#include "app/screenroute.h"

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

#include <optional>

namespace zentrik {

// The main window's navigation state: the sidebar selection, the card picked from the
// dashboard or a category, and the screen the content area shows for them.
class ContentViewModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program and handed to its window")
    Q_PROPERTY(QString screen READ screen NOTIFY routeChanged FINAL)
    Q_PROPERTY(QString screenArgument READ screenArgument NOTIFY routeChanged FINAL)
    Q_PROPERTY(QString screenTitle READ screenTitle NOTIFY routeChanged FINAL)
    Q_PROPERTY(QString selectedAgent READ selectedAgent NOTIFY selectedAgentChanged FINAL)

public:
    explicit ContentViewModel(QObject *parent = nullptr);

    [[nodiscard]] std::optional<NavigationItem> selectedItem() const { return m_selectedItem; }
    // Selecting anything in the sidebar leaves the card that was open.
    void select(const std::optional<NavigationItem> &item);

    [[nodiscard]] QString selectedAgent() const { return m_selectedAgent; }
    [[nodiscard]] ScreenRoute route() const { return m_route; }
    [[nodiscard]] QString screen() const { return screenId(m_route.screen); }
    [[nodiscard]] QString screenArgument() const { return m_route.argument; }
    [[nodiscard]] QString screenTitle() const { return zentrik::screenTitle(m_route); }

    Q_INVOKABLE void showHome();
    Q_INVOKABLE void showTool(const QString &name);
    Q_INVOKABLE void showCategory(const QString &name);
    Q_INVOKABLE void showSettings();
    Q_INVOKABLE void showHistory();
    // Opens a stored conversation (or run) in its own tool: routes to the tool's screen, which
    // takes the id with takeConversation() as it starts. `assistant` names a generator run's
    // assistant, whose family's screen it opens in.
    Q_INVOKABLE void openConversation(const QString &tool, const QString &id, const QString &assistant = {});
    // The conversation waiting for this tool's screen, once; empty when there is none.
    Q_INVOKABLE QString takeConversation(const QString &tool);
    // A dashboard shortcut's destination: a category of the catalogue when one has that
    // name, otherwise a standalone tool.
    Q_INVOKABLE void open(const QString &destination);
    // Picking a card opens the tool that serves its title, with the title preselected.
    Q_INVOKABLE void openAgent(const QString &title);
    // Leaves the agent's screen for the card grid (or the dashboard) it was picked from.
    Q_INVOKABLE void backToAgents();

Q_SIGNALS:
    void selectionChanged();
    void selectedAgentChanged();
    void routeChanged();

private:
    void setSelectedAgent(const QString &title);
    void updateRoute();

    std::optional<NavigationItem> m_selectedItem;
    QString m_selectedAgent;
    ScreenRoute m_route;
    QString m_pendingTool;
    QString m_pendingConversation;
};

} // namespace zentrik
