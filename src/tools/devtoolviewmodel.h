#pragma once

#include "tools/chattoolviewmodel.h"

#include <QStringList>
#include <QtQmlIntegration>

namespace zentrik {

class StreamCoalescer;
struct ConversationSuggestion;

// The Code Debugger ("debugger") and the Sample Data Generator ("sampleData"). A send shows
// the message as typed, sends its redacted copy without asking, and streams the reply for
// the free and OpenAI models (the others answer in one piece). A follow-up carries the
// earlier exchanges as they were sent.
class DevToolViewModel : public zentrik::ChatToolViewModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString tool READ tool WRITE setTool NOTIFY toolChanged FINAL)
    Q_PROPERTY(QString input READ input WRITE setInput NOTIFY inputChanged FINAL)
    Q_PROPERTY(QString selectedSuggestion READ selectedSuggestion WRITE setSelectedSuggestion NOTIFY
            selectedSuggestionChanged FINAL)
    Q_PROPERTY(QStringList suggestions READ suggestions NOTIFY toolChanged FINAL)
    Q_PROPERTY(bool isStreaming READ isStreaming NOTIFY isStreamingChanged FINAL)
    Q_PROPERTY(QString streamedContent READ streamedContent NOTIFY streamedContentChanged FINAL)
    Q_PROPERTY(QString buttonText READ buttonText NOTIFY buttonTextChanged FINAL)
    Q_PROPERTY(QString buttonSymbol READ buttonSymbol NOTIFY toolChanged FINAL)

public:
    explicit DevToolViewModel(QObject *parent = nullptr);
    ~DevToolViewModel() override;

    [[nodiscard]] QString tool() const { return m_tool; }
    void setTool(const QString &tool);
    [[nodiscard]] QString input() const { return m_input; }
    void setInput(const QString &text);
    // The label of the chosen suggestion (a key such as "logicError" is accepted too);
    // empty when none is chosen.
    [[nodiscard]] QString selectedSuggestion() const;
    void setSelectedSuggestion(const QString &keyOrLabel);
    Q_INVOKABLE void toggleSuggestion(const QString &label);
    [[nodiscard]] QStringList suggestions() const;
    [[nodiscard]] bool isStreaming() const { return m_isStreaming; }
    [[nodiscard]] QString streamedContent() const { return m_streamedContent; }
    [[nodiscard]] QString buttonText() const;
    [[nodiscard]] QString buttonSymbol() const;

    // The message a send would show: the suggestion's prompt, a blank line and the input.
    [[nodiscard]] QString composeMessage(const QString &input) const;

    Q_INVOKABLE void send();
    // Ends a streamed reply; what arrived so far becomes the reply, with no error.
    Q_INVOKABLE void stop();

    // Ids that contain ":free" or start with "gpt-" stream; the others answer in one piece.
    [[nodiscard]] static bool streamsReplies(const QString &modelId);

    [[nodiscard]] QString historyTool() const override { return m_tool; }

Q_SIGNALS:
    void toolChanged();
    void inputChanged();
    void selectedSuggestionChanged();
    void isStreamingChanged();
    void streamedContentChanged();
    void buttonTextChanged();

protected:
    void request(const Turn &turn, const QString &prompt, const QList<ChatMessage> &earlier) override;
    void restoreInput(const ChatMessageRecord &question) override;
    void leaveConversation() override;

private:
    [[nodiscard]] const QList<ConversationSuggestion> &table() const;
    void setStreaming(bool streaming);
    void finishStream(const std::optional<APIError> &error);

    QString m_tool = QStringLiteral("debugger");
    QString m_input;
    const ConversationSuggestion *m_selected = nullptr;
    bool m_isStreaming = false;
    QString m_streamedContent;
    APIManager::StreamId m_stream = 0;
    Turn m_streamTurn;
    bool m_stopRequested = false;
    StreamCoalescer *m_coalescer;
};

} // namespace zentrik
