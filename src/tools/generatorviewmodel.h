#pragma once

#include "history/historyservice.h"
#include "model/apimanager.h"
#include "privacy/piialertviewmodel.h"
#include "render/markdownmodel.h"
#include "tools/promptcomposer.h"

#include <QObject>
#include <QPointer>
#include <QVariantList>
#include <QVariantMap>
#include <QtQmlIntegration>

namespace zentrik {

class AssistantFamily;
class StreamCoalescer;

// State of one form-driven generator screen, configured by its family ("marketing",
// "sales", "customer-support", "human-resources"): the picked assistant, the form values,
// and the generated text as it streams in. Generate checks the model and key (where the
// family does), asks about personal information (where the family does; customer support
// sends the redacted copy without asking), then streams the reply into `output`.
class GeneratorViewModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(zentrik::APIManager *apiManager READ apiManager WRITE setApiManager NOTIFY apiManagerChanged FINAL)
    Q_PROPERTY(QString family READ family WRITE setFamily NOTIFY familyChanged FINAL)
    Q_PROPERTY(QString familyName READ familyName NOTIFY familyChanged FINAL)
    Q_PROPERTY(QString pickerPrompt READ pickerPrompt NOTIFY familyChanged FINAL)
    Q_PROPERTY(QStringList assistantTitles READ assistantTitles NOTIFY familyChanged FINAL)
    // The selected assistant, and the one the screen opens with.
    Q_PROPERTY(QString category READ selectedTitle WRITE selectAssistant NOTIFY selectedTitleChanged FINAL)
    Q_PROPERTY(QString initialCategory READ initialTitle WRITE setInitialTitle NOTIFY initialTitleChanged FINAL)
    Q_PROPERTY(QString assistantDescription READ assistantDescription NOTIFY selectedTitleChanged FINAL)
    Q_PROPERTY(QString assistantColor READ assistantColor NOTIFY selectedTitleChanged FINAL)
    Q_PROPERTY(QString assistantIcon READ assistantIcon NOTIFY selectedTitleChanged FINAL)
    // The form: [{label, type ("text", "textarea", "select"), placeholder, options}] in table order.
    Q_PROPERTY(QVariantList fields READ fields NOTIFY selectedTitleChanged FINAL)
    Q_PROPERTY(QVariantMap inputs READ inputsMap NOTIFY inputsChanged FINAL)
    Q_PROPERTY(QString output READ output NOTIFY outputChanged FINAL)
    Q_PROPERTY(zentrik::MarkdownModel *outputBlocks READ outputBlocks CONSTANT FINAL)
    Q_PROPERTY(bool isGenerating READ isGenerating NOTIFY isGeneratingChanged FINAL)
    Q_PROPERTY(bool isStreaming READ isStreaming NOTIFY isStreamingChanged FINAL)
    // The reply shown was stopped by the user before it was complete.
    Q_PROPERTY(bool wasStopped READ wasStopped NOTIFY outputChanged FINAL)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged FINAL)
    // Whether the error is one the user fixes in Settings (a missing key, no usable model).
    Q_PROPERTY(bool errorOpensSettings READ errorOpensSettings NOTIFY errorMessageChanged FINAL)
    Q_PROPERTY(zentrik::PiiAlertViewModel *piiAlertVM READ piiAlertVM CONSTANT FINAL)
    Q_PROPERTY(bool canGenerate READ canGenerate NOTIFY canGenerateChanged FINAL)
    // Where each run is saved (assistant, fields, prompt and reply); none keeps nothing.
    Q_PROPERTY(zentrik::HistoryService *history READ history WRITE setHistory NOTIFY historyChanged FINAL)
    // The stored id of the run on screen; empty when it is not saved.
    Q_PROPERTY(QString runId READ runId NOTIFY runIdChanged FINAL)

public:
    explicit GeneratorViewModel(QObject *parent = nullptr);
    ~GeneratorViewModel() override;

    [[nodiscard]] APIManager *apiManager() const { return m_apiManager; }
    void setApiManager(APIManager *apiManager);
    [[nodiscard]] QString family() const;
    void setFamily(const QString &identifier);
    [[nodiscard]] QString familyName() const;
    [[nodiscard]] QString pickerPrompt() const;
    [[nodiscard]] QStringList assistantTitles() const;

    [[nodiscard]] QString selectedTitle() const { return m_selectedTitle; }
    // Selecting another assistant keeps the values: they are keyed by label, so a field of
    // the same label shows what was typed before.
    Q_INVOKABLE void selectAssistant(const QString &title);
    [[nodiscard]] QString initialTitle() const { return m_initialTitle; }
    void setInitialTitle(const QString &title);
    [[nodiscard]] QString assistantDescription() const;
    [[nodiscard]] QString assistantColor() const;
    [[nodiscard]] QString assistantIcon() const;
    [[nodiscard]] QVariantList fields() const;

    [[nodiscard]] const FormInputs &inputs() const { return m_inputs; }
    [[nodiscard]] QVariantMap inputsMap() const;
    Q_INVOKABLE void setInput(const QString &label, const QString &value);
    // The prompt Generate would send now (empty when no assistant is selected).
    [[nodiscard]] Q_INVOKABLE QString composedPrompt() const;

    [[nodiscard]] QString output() const { return m_output; }
    [[nodiscard]] MarkdownModel *outputBlocks() const { return m_outputBlocks; }
    [[nodiscard]] bool isGenerating() const { return m_isGenerating; }
    [[nodiscard]] bool isStreaming() const { return m_isStreaming; }
    [[nodiscard]] QString errorMessage() const { return m_errorMessage; }
    [[nodiscard]] bool wasStopped() const { return m_wasStopped; }
    [[nodiscard]] bool errorOpensSettings() const { return m_errorOpensSettings; }
    [[nodiscard]] PiiAlertViewModel *piiAlertVM() const { return m_piiAlert; }
    [[nodiscard]] bool canGenerate() const;

    Q_INVOKABLE void generate();
    // The two answers of the personal-information dialog.
    Q_INVOKABLE void sendOriginal();
    Q_INVOKABLE void sendRedacted();
    // Stops a running generation, keeping the text shown so far, with no error.
    Q_INVOKABLE void stop();

    [[nodiscard]] HistoryService *history() const { return m_history; }
    void setHistory(HistoryService *history);
    [[nodiscard]] QString runId() const { return m_run.uid; }
    // Shows a stored run of this family: its assistant, fields and reply; runOpened() follows.
    Q_INVOKABLE void openRun(const QString &id);
    // The form's values as the history keeps them: one "label: value" line per field of the
    // selected assistant that has a value, in the prompt's order.
    [[nodiscard]] QString fieldsText() const;

Q_SIGNALS:
    void apiManagerChanged();
    void familyChanged();
    void selectedTitleChanged();
    void initialTitleChanged();
    void inputsChanged();
    void outputChanged();
    void isGeneratingChanged();
    void isStreamingChanged();
    void errorMessageChanged();
    void canGenerateChanged();
    void historyChanged();
    void runIdChanged();
    void runOpened(bool succeeded);

private:
    // Saves the run's form and prompt as it starts, and its reply as it ends.
    void saveRunStart(const QString &prompt);
    void saveRunReply(MessageEnding ending);
    void send(const QString &prompt);
    void appendOutput(const QString &text);
    void finish(const std::optional<APIError> &error);
    void setGenerating(bool generating, bool streaming);
    void setErrorMessage(const QString &message, bool opensSettings = false);

    QPointer<APIManager> m_apiManager;
    const AssistantFamily *m_family = nullptr;
    QString m_selectedTitle;
    QString m_initialTitle;
    FormInputs m_inputs;
    QString m_output;
    QString m_pendingPrompt; // the prompt waiting for the user's choice in the dialog
    bool m_isGenerating = false;
    bool m_isStreaming = false;
    QString m_errorMessage;
    bool m_errorOpensSettings = false;
    APIManager::StreamId m_stream = 0;
    bool m_stopRequested = false;
    bool m_wasStopped = false;
    MarkdownModel *m_outputBlocks;
    PiiAlertViewModel *m_piiAlert;
    StreamCoalescer *m_coalescer;
    QPointer<HistoryService> m_history;
    ConversationRecord m_run; // the run on screen as stored; uid empty when not saved
    QString m_runModel;
};

} // namespace zentrik
