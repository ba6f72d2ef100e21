#pragma once

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace zentrik {

// The state of the "Personal Information Detected" dialog of one tool screen: whether it is
// shown, and the two versions of the message the user chooses between.
class PiiAlertViewModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool showAlert READ showAlert WRITE setShowAlert NOTIFY showAlertChanged FINAL)
    Q_PROPERTY(QString originalMessage READ originalMessage NOTIFY originalMessageChanged FINAL)
    Q_PROPERTY(QString redactedMessage READ redactedMessage NOTIFY redactedMessageChanged FINAL)

public:
    explicit PiiAlertViewModel(QObject *parent = nullptr);

    [[nodiscard]] bool showAlert() const;
    void setShowAlert(bool showAlert);
    [[nodiscard]] QString originalMessage() const;
    [[nodiscard]] QString redactedMessage() const;

    // Redacts the message. When the redacted copy differs, keeps both versions, opens the
    // dialog and returns true: the tool must wait for the user's choice. Otherwise changes
    // nothing and returns false: the message may be sent as it is.
    Q_INVOKABLE bool checkForPII(const QString &message);

Q_SIGNALS:
    void showAlertChanged();
    void originalMessageChanged();
    void redactedMessageChanged();

private:
    void setOriginalMessage(const QString &message);
    void setRedactedMessage(const QString &message);

    bool m_showAlert = false;
    QString m_originalMessage;
    QString m_redactedMessage;
};

} // namespace zentrik
