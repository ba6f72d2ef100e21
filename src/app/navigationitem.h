#pragma once

#include <QDebug>
#include <QObject>
#include <QString>

#include <utility>

namespace zentrik {

// What the sidebar has selected: the dashboard, a standalone tool (by its display name),
// a category of the catalogue (by its name), the conversation history or the settings.
class NavigationItem
{
    Q_GADGET
    Q_PROPERTY(Kind kind READ kind CONSTANT FINAL)
    Q_PROPERTY(QString name READ name CONSTANT FINAL)

public:
    enum class Kind { Home, Tool, Category, History, Settings };
    Q_ENUM(Kind)

    NavigationItem() = default;

    [[nodiscard]] static NavigationItem home() { return {}; }
    [[nodiscard]] static NavigationItem tool(const QString &name) { return { Kind::Tool, name }; }
    [[nodiscard]] static NavigationItem category(const QString &name) { return { Kind::Category, name }; }
    [[nodiscard]] static NavigationItem history() { return { Kind::History, {} }; }
    [[nodiscard]] static NavigationItem settings() { return { Kind::Settings, {} }; }

    [[nodiscard]] Kind kind() const { return m_kind; }
    // The tool's or the category's name; empty for home and settings.
    [[nodiscard]] QString name() const { return m_name; }

    friend bool operator==(const NavigationItem &, const NavigationItem &) = default;

private:
    NavigationItem(Kind kind, QString name)
        : m_kind(kind)
        , m_name(std::move(name))
    { }

    Kind m_kind = Kind::Home;
    QString m_name;
};

QDebug operator<<(QDebug debug, const NavigationItem &item);

} // namespace zentrik
