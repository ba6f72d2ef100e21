#include "privacy/piialertviewmodel.h"

#include "privacy/piimanager.h"

namespace zentrik {

PiiAlertViewModel::PiiAlertViewModel(QObject *parent)
    : QObject(parent)
{ }

bool PiiAlertViewModel::showAlert() const
{
    return m_showAlert;
}

void PiiAlertViewModel::setShowAlert(bool showAlert)
{
    if (m_showAlert == showAlert) {
        return;
    }
    m_showAlert = showAlert;
    Q_EMIT showAlertChanged();
}

QString PiiAlertViewModel::originalMessage() const
{
    return m_originalMessage;
}

QString PiiAlertViewModel::redactedMessage() const
{
    return m_redactedMessage;
}

bool PiiAlertViewModel::checkForPII(const QString &message)
{
    const QString redacted = PIIManager::redact(message);
    if (redacted == message) {
        return false;
    }
    setOriginalMessage(message);
    setRedactedMessage(redacted);
    setShowAlert(true);
    return true;
}

void PiiAlertViewModel::setOriginalMessage(const QString &message)
{
    if (m_originalMessage == message) {
        return;
    }
    m_originalMessage = message;
    Q_EMIT originalMessageChanged();
}

void PiiAlertViewModel::setRedactedMessage(const QString &message)
{
    if (m_redactedMessage == message) {
        return;
    }
    m_redactedMessage = message;
    Q_EMIT redactedMessageChanged();
}

} // namespace zentrik
