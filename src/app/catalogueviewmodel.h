#pragma once

#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>
#include <QtQmlIntegration>

namespace zentrik {

// The assistant catalogue and the dashboard's shortcuts as the views read them: plain
// lists of maps, built once, that never change.
class CatalogueViewModel : public QObject
{
    Q_OBJECT
    QML_NAMED_ELEMENT(Catalogue)
    QML_SINGLETON
    // [{name, icon, agents: [{title, description, icon, color}]}] in display order
    Q_PROPERTY(QVariantList categories READ categories CONSTANT FINAL)
    // [{icon, text, destination}] in display order
    Q_PROPERTY(QVariantList promptOptions READ promptOptions CONSTANT FINAL)
    Q_PROPERTY(QString showcaseHeading READ showcaseHeading CONSTANT FINAL)
    Q_PROPERTY(QStringList tools READ tools CONSTANT FINAL)

public:
    explicit CatalogueViewModel(QObject *parent = nullptr);

    [[nodiscard]] QVariantList categories() const;
    [[nodiscard]] QVariantList promptOptions() const;
    [[nodiscard]] QString showcaseHeading() const;
    [[nodiscard]] QStringList tools() const;

    // The category of that name ({} when there is none).
    [[nodiscard]] Q_INVOKABLE QVariantMap category(const QString &name) const;
    // The card of that title ({} when there is none).
    [[nodiscard]] Q_INVOKABLE QVariantMap agent(const QString &title) const;
};

} // namespace zentrik
