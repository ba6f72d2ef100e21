#pragma once

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace zentrik {

// Finds out, when a file dialog is about to open, whether it can: the dialog that Qt Quick
// draws itself (used where the desktop offers no native one) lists folders through a QML
// module of its own, and opening it without that module takes the whole program down.
class FileDialogCheck : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString requiredModule READ requiredModule WRITE setRequiredModule NOTIFY requiredModuleChanged FINAL)

public:
    explicit FileDialogCheck(QObject *parent = nullptr);

    [[nodiscard]] QString requiredModule() const { return m_requiredModule; }
    void setRequiredModule(const QString &module);

    // Empty when a file dialog can open, otherwise one line that says why not and what to
    // install. Tries the import once per module and remembers the answer.
    Q_INVOKABLE QString problem();

Q_SIGNALS:
    void requiredModuleChanged();

private:
    QString m_requiredModule;
};

} // namespace zentrik
