#pragma once

#include "app/contentviewmodel.h"
#include "app/navigationitem.h"

#include <QAbstractListModel>
#include <QPointer>
#include <QtQmlIntegration>

namespace zentrik {

// The sidebar's entries: Home, the standalone tools in order and History, the categories of
// the catalogue in order, and Settings. Each row knows whether it is the current selection;
// activating a row selects it in the navigation.
class SidebarModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(zentrik::ContentViewModel *navigation READ navigation WRITE setNavigation NOTIFY navigationChanged FINAL)

public:
    enum Role {
        LabelRole = Qt::UserRole + 1,
        SymbolRole, // system symbol name
        SectionRole, // heading the entry sits under; empty for Home and Settings
        SelectedRole,
    };
    Q_ENUM(Role)

    explicit SidebarModel(QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] ContentViewModel *navigation() const { return m_navigation; }
    void setNavigation(ContentViewModel *navigation);

    [[nodiscard]] NavigationItem item(int row) const;
    // Selects the row's entry; rows out of range are ignored.
    Q_INVOKABLE void activate(int row);

Q_SIGNALS:
    void navigationChanged();

private:
    struct Entry
    {
        NavigationItem item;
        QString label;
        QString symbol;
        QString section;
    };

    [[nodiscard]] bool isSelected(const Entry &entry) const;
    void refreshSelection();

    QList<Entry> m_entries;
    QPointer<ContentViewModel> m_navigation;
    QMetaObject::Connection m_selectionConnection;
};

} // namespace zentrik
