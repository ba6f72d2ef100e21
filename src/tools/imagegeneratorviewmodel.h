#pragma once

#include "history/historyservice.h"
#include "model/apimanager.h"

#include <QObject>
#include <QPointer>
#include <QSize>
#include <QStringList>
#include <QTemporaryDir>
#include <QUrl>
#include <QVariantList>
#include <QtQmlIntegration>

namespace zentrik {

// State of the image studio: the prompt, the size choice, a generation through the shared
// APIManager (whose selected image model picks the provider), the picture it produced and
// saving that picture as a PNG file. The size choice is shown and kept but never sent: each
// provider asks for its own fixed frame.
class ImageGeneratorViewModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(zentrik::APIManager *apiManager READ apiManager WRITE setApiManager NOTIFY apiManagerChanged FINAL)
    Q_PROPERTY(QString prompt READ prompt WRITE setPrompt NOTIFY promptChanged FINAL)
    Q_PROPERTY(QStringList sizeLabels READ sizeLabels CONSTANT FINAL)
    Q_PROPERTY(ImageSize selectedSize READ selectedSize WRITE setSelectedSize NOTIFY selectedSizeChanged FINAL)
    Q_PROPERTY(bool isGenerating READ isGenerating NOTIFY isGeneratingChanged FINAL)
    Q_PROPERTY(bool canGenerate READ canGenerate NOTIFY canGenerateChanged FINAL)
    Q_PROPERTY(QString progressText READ progressText NOTIFY progressChanged FINAL)
    // How many requests are ahead in the fal queue; -1 when no queue position is known.
    Q_PROPERTY(int queuePosition READ queuePosition NOTIFY progressChanged FINAL)
    // Where the view shows the picture from (always a local file); empty before the first.
    Q_PROPERTY(QUrl imageUrl READ imageUrl NOTIFY imageChanged FINAL)
    Q_PROPERTY(bool hasImage READ hasImage NOTIFY imageChanged FINAL)
    // QSizeF, the type QML knows as `size`.
    Q_PROPERTY(QSizeF imageSize READ imageSize NOTIFY imageChanged FINAL)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged FINAL)
    // Whether the error is one the user fixes in Settings (a missing key).
    Q_PROPERTY(bool errorOpensSettings READ errorOpensSettings NOTIFY errorMessageChanged FINAL)
    // The shown name of the image model a generation uses.
    Q_PROPERTY(QString modelName READ modelName NOTIFY modelNameChanged FINAL)
    Q_PROPERTY(bool showExamples READ showExamples WRITE setShowExamples NOTIFY showExamplesChanged FINAL)
    // [{title, text}] in the order shown.
    Q_PROPERTY(QVariantList examplePrompts READ examplePrompts CONSTANT FINAL)
    Q_PROPERTY(QString suggestedFileName READ suggestedFileName CONSTANT FINAL)
    // Where the save dialog proposes to write: the suggested name in the user's pictures folder.
    Q_PROPERTY(QUrl suggestedFileUrl READ suggestedFileUrl CONSTANT FINAL)
    // Where each picture is saved with its prompt and model; none keeps nothing.
    Q_PROPERTY(zentrik::HistoryService *history READ history WRITE setHistory NOTIFY historyChanged FINAL)

public:
    enum class ImageSize { small, medium, large };
    Q_ENUM(ImageSize)

    explicit ImageGeneratorViewModel(QObject *parent = nullptr);
    ~ImageGeneratorViewModel() override;

    [[nodiscard]] APIManager *apiManager() const { return m_apiManager; }
    void setApiManager(APIManager *apiManager);
    [[nodiscard]] QString prompt() const { return m_prompt; }
    void setPrompt(const QString &prompt);
    // "256x256", "512x512", "1024x1024".
    [[nodiscard]] static QStringList sizeLabels();
    [[nodiscard]] ImageSize selectedSize() const { return m_selectedSize; }
    void setSelectedSize(ImageSize size);
    [[nodiscard]] bool isGenerating() const { return m_isGenerating; }
    // A prompt with more than blanks, and nothing under way.
    [[nodiscard]] bool canGenerate() const;
    [[nodiscard]] QString progressText() const { return m_progressText; }
    [[nodiscard]] int queuePosition() const { return m_queuePosition; }
    [[nodiscard]] QUrl imageUrl() const { return m_imageUrl; }
    [[nodiscard]] bool hasImage() const { return !m_png.isEmpty(); }
    [[nodiscard]] QSize imageSize() const { return m_imageSize; }
    // The picture as the PNG that Save writes.
    [[nodiscard]] QByteArray imagePng() const { return m_png; }
    [[nodiscard]] QString errorMessage() const { return m_errorMessage; }
    [[nodiscard]] bool errorOpensSettings() const { return m_errorOpensSettings; }
    [[nodiscard]] QString modelName() const;
    [[nodiscard]] bool showExamples() const { return m_showExamples; }
    void setShowExamples(bool show);
    [[nodiscard]] static QVariantList examplePrompts();
    [[nodiscard]] static QString suggestedFileName() { return QStringLiteral("generated-image.png"); }
    [[nodiscard]] static QUrl suggestedFileUrl();

    Q_INVOKABLE void generate();
    // Gives up waiting for the generation under way: the screen is free at once and whatever
    // the provider still sends is dropped. A request already sent is not withdrawn.
    Q_INVOKABLE void cancel();
    Q_INVOKABLE void toggleExamples() { setShowExamples(!m_showExamples); }
    // Puts the example's text into the prompt field and hands it to copyRequested.
    Q_INVOKABLE void copyExample(int index);
    // Writes the picture as PNG to the chosen file (a file address from the save dialog, or
    // a path). A failure shows "Failed to save image: " and the reason.
    Q_INVOKABLE bool save(const QUrl &file);

    [[nodiscard]] HistoryService *history() const { return m_history; }
    void setHistory(HistoryService *history);
    // Shows a stored run: its prompt and the kept picture; runOpened() follows.
    Q_INVOKABLE void openRun(const QString &id);

Q_SIGNALS:
    void apiManagerChanged();
    void promptChanged();
    void selectedSizeChanged();
    void isGeneratingChanged();
    void canGenerateChanged();
    void progressChanged();
    void imageChanged();
    void errorMessageChanged();
    void modelNameChanged();
    void showExamplesChanged();
    // The window puts the text on the clipboard.
    void copyRequested(const QString &text);
    // The picture was written to path.
    void saved(const QString &path);
    void historyChanged();
    void runOpened(bool succeeded);

private:
    // Which key the selected model needs, for a missing-key message.
    [[nodiscard]] QString neededKeyHint() const;
    void finishWithError(const QString &message, bool opensSettings = false);
    // Shows the picture; a generation's picture (with its prompt) is also saved in the history.
    void showPicture(const QString &address, quint64 generation, const QString &prompt = {}, const QString &model = {});
    void setGenerating(bool generating);
    void setProgress(const QString &text, int queuePosition);
    void setErrorMessage(const QString &message, bool opensSettings = false);
    void saveRun(const QString &prompt, const QString &model);

    QPointer<APIManager> m_apiManager;
    QString m_prompt;
    ImageSize m_selectedSize = ImageSize::large;
    bool m_isGenerating = false;
    QString m_progressText;
    int m_queuePosition = -1;
    QUrl m_imageUrl;
    QSize m_imageSize;
    QByteArray m_png;
    QString m_errorMessage;
    bool m_errorOpensSettings = false;
    bool m_showExamples = false;
    // Identifies the generation whose answers still count.
    quint64 m_generation = 0;
    QTemporaryDir m_cache;
    QPointer<HistoryService> m_history;
};

} // namespace zentrik
