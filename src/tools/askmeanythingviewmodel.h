#pragma once

#include "privacy/piialertviewmodel.h"
#include "tools/chattoolviewmodel.h"

#include <QStringList>
#include <QtQmlIntegration>

namespace zentrik {

// The general chat. Each send validates the model choice, asks about personal information
// when the redacted copy differs, puts the chosen suggestion's prefix before the text and
// waits for the whole reply. A follow-up carries the earlier exchanges as they were sent.
class AskMeAnythingViewModel : public zentrik::ChatToolViewModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString newMessage READ newMessage WRITE setNewMessage NOTIFY newMessageChanged FINAL)
    Q_PROPERTY(QString selectedSuggestion READ selectedSuggestion WRITE setSelectedSuggestion NOTIFY
            selectedSuggestionChanged FINAL)
    Q_PROPERTY(QStringList suggestions READ suggestions CONSTANT FINAL)
    Q_PROPERTY(bool isAIProcessing READ isProcessing NOTIFY isProcessingChanged FINAL)
    Q_PROPERTY(zentrik::PiiAlertViewModel *piiAlertVM READ piiAlertVM CONSTANT FINAL)

public:
    explicit AskMeAnythingViewModel(QObject *parent = nullptr);

    [[nodiscard]] QString newMessage() const { return m_newMessage; }
    void setNewMessage(const QString &text);
    [[nodiscard]] QString selectedSuggestion() const { return m_selectedSuggestion; }
    // Choosing the selected suggestion again clears it; an unknown label clears it too.
    void setSelectedSuggestion(const QString &label);
    Q_INVOKABLE void toggleSuggestion(const QString &label);
    [[nodiscard]] static QStringList suggestions();
    [[nodiscard]] PiiAlertViewModel *piiAlertVM() const { return m_piiAlert; }

    // The send button and Return. With personal information found, the dialog opens and
    // nothing is sent until sendOriginal() or sendRedacted().
    Q_INVOKABLE virtual void send();
    Q_INVOKABLE virtual void sendOriginal();
    Q_INVOKABLE virtual void sendRedacted();

    [[nodiscard]] QString historyTool() const override;

Q_SIGNALS:
    void newMessageChanged();
    void selectedSuggestionChanged();

protected:
    // The prompt that goes out for the text the user chose to send.
    [[nodiscard]] virtual QString composePrompt(const QString &text) const;
    // Runs the request for the composed prompt; the reply becomes an assistant message.
    void request(const Turn &turn, const QString &prompt, const QList<ChatMessage> &earlier) override;
    void restoreInput(const ChatMessageRecord &question) override;

    // Sends `text` (the typed text, or its redacted copy) for the question as typed.
    void deliver(const QString &typed, const QString &text);
    // Shows the question, clears the input and sends `prompt` with the earlier messages.
    void deliverPrompt(ChatMessageRecord question, const QString &prompt);

private:
    QString m_newMessage;
    QString m_selectedSuggestion;
    PiiAlertViewModel *m_piiAlert;
};

} // namespace zentrik
