#include "tools/imagegeneratorviewmodel.h"

#include "model/providerrouting.h"
#include "tools/imageexamples.h"
#include "tools/imageloader.h"

#include <QDir>
#include <QSaveFile>
#include <QStandardPaths>
#include <QVariantMap>

namespace zentrik {

ImageGeneratorViewModel::ImageGeneratorViewModel(QObject *parent)
    : QObject(parent)
{ }

ImageGeneratorViewModel::~ImageGeneratorViewModel() = default;

void ImageGeneratorViewModel::setApiManager(APIManager *apiManager)
{
    if (m_apiManager == apiManager) {
        return;
    }
    const bool could = canGenerate();
    if (m_apiManager) {
        disconnect(m_apiManager, nullptr, this, nullptr);
    }
    m_apiManager = apiManager;
    if (m_apiManager) {
        connect(m_apiManager, &APIManager::selectedImageModelChanged, this, &ImageGeneratorViewModel::modelNameChanged);
    }
    Q_EMIT apiManagerChanged();
    Q_EMIT modelNameChanged();
    if (could != canGenerate()) {
        Q_EMIT canGenerateChanged();
    }
}

void ImageGeneratorViewModel::setPrompt(const QString &prompt)
{
    if (m_prompt == prompt) {
        return;
    }
    const bool could = canGenerate();
    m_prompt = prompt;
    Q_EMIT promptChanged();
    if (could != canGenerate()) {
        Q_EMIT canGenerateChanged();
    }
}

QStringList ImageGeneratorViewModel::sizeLabels()
{
    return { QStringLiteral("256x256"), QStringLiteral("512x512"), QStringLiteral("1024x1024") };
}

void ImageGeneratorViewModel::setSelectedSize(ImageSize size)
{
    if (m_selectedSize == size) {
        return;
    }
    m_selectedSize = size;
    Q_EMIT selectedSizeChanged();
}

bool ImageGeneratorViewModel::canGenerate() const
{
    return !m_isGenerating && !m_apiManager.isNull() && !m_prompt.trimmed().isEmpty();
}

void ImageGeneratorViewModel::setShowExamples(bool show)
{
    if (m_showExamples == show) {
        return;
    }
    m_showExamples = show;
    Q_EMIT showExamplesChanged();
}

QVariantList ImageGeneratorViewModel::examplePrompts()
{
    QVariantList list;
    for (const ImageExample &example : imageExamples()) {
        list.append(
            QVariantMap { { QStringLiteral("title"), example.title }, { QStringLiteral("text"), example.text } });
    }
    return list;
}

QUrl ImageGeneratorViewModel::suggestedFileUrl()
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    if (folder.isEmpty() || !QDir(folder).exists()) {
        folder = QDir::homePath();
    }
    return QUrl::fromLocalFile(QDir(folder).absoluteFilePath(suggestedFileName()));
}

void ImageGeneratorViewModel::copyExample(int index)
{
    const QList<ImageExample> &examples = imageExamples();
    if (index < 0 || index >= examples.size()) {
        return;
    }
    setPrompt(examples.at(index).text);
    Q_EMIT copyRequested(examples.at(index).text);
}

void ImageGeneratorViewModel::generate()
{
    if (!canGenerate()) {
        return;
    }
    const quint64 generation = ++m_generation;
    setErrorMessage({});
    setProgress(tr("Generating image…"), -1);
    setGenerating(true);
    m_apiManager->generateImage(
        m_prompt, this,
        [this, generation, prompt = m_prompt, model = m_apiManager->selectedImageModel()](const ImageResult &result) {
            if (generation != m_generation) {
                return;
            }
            if (const auto *error = std::get_if<ImageError>(&result)) {
                const auto *apiError = error->get<APIError>();
                const bool opensSettings = apiError != nullptr && apiError->isFixedInSettings();
                finishWithError(
                    opensSettings ? error->message() + QLatin1Char('\n') + neededKeyHint() : error->message(),
                    opensSettings);
                return;
            }
            showPicture(std::get<QString>(result), generation, prompt, model);
        },
        [this, generation](const fal::QueueStatus &status) {
            if (generation != m_generation || !m_isGenerating) {
                return;
            }
            if (status.state() == fal::QueueStatus::State::inQueue) {
                setProgress(tr("In queue (position %1)").arg(status.position()), status.position());
            } else {
                setProgress(tr("Generating image…"), -1);
            }
        });
}

void ImageGeneratorViewModel::showPicture(
    const QString &address, quint64 generation, const QString &prompt, const QString &model)
{
    setProgress(tr("Loading image…"), -1);
    if (m_apiManager.isNull()) {
        finishWithError(tr("Failed to load image"));
        return;
    }
    ImageLoader::load(m_apiManager->httpClient(), address, m_cache.path(), this,
        [this, generation, prompt, model](const ImageLoader::Result &result) {
            if (generation != m_generation) {
                return;
            }
            if (const auto *message = std::get_if<QString>(&result)) {
                finishWithError(*message);
                return;
            }
            const auto &picture = std::get<ImageLoader::Picture>(result);
            m_png = picture.png;
            m_imageSize = picture.size;
            m_imageUrl = picture.displayUrl;
            Q_EMIT imageChanged();
            setProgress({}, -1);
            setGenerating(false);
            if (!prompt.isEmpty()) {
                saveRun(prompt, model);
            }
        });
}

QString ImageGeneratorViewModel::modelName() const
{
    if (m_apiManager.isNull()) {
        return {};
    }
    QString id = m_apiManager->selectedImageModel();
    for (const ImageModel &model : m_apiManager->imageModels()) {
        if (model.id == id) {
            return model.name;
        }
    }
    return id;
}

QString ImageGeneratorViewModel::neededKeyHint() const
{
    switch (routeImageModel(m_apiManager ? m_apiManager->selectedImageModel() : QString())) {
    case ImageProvider::openAI:
        return tr("%1 needs the OpenAI API key.").arg(modelName());
    case ImageProvider::fal:
        return tr("%1 needs the fal API key.").arg(modelName());
    case ImageProvider::together:
        break;
    }
    return {};
}

void ImageGeneratorViewModel::cancel()
{
    if (!m_isGenerating) {
        return;
    }
    ++m_generation; // the answer of the abandoned generation no longer matches
    setProgress({}, -1);
    setGenerating(false);
}

void ImageGeneratorViewModel::finishWithError(const QString &message, bool opensSettings)
{
    setErrorMessage(message, opensSettings);
    setProgress({}, -1);
    setGenerating(false);
}

bool ImageGeneratorViewModel::save(const QUrl &file)
{
    if (m_png.isEmpty()) {
        return false;
    }
    const QString path = file.isLocalFile() ? file.toLocalFile() : file.toString();
    QSaveFile out(path);
    if (path.isEmpty() || !out.open(QIODevice::WriteOnly) || out.write(m_png) != m_png.size() || !out.commit()) {
        const QString reason = path.isEmpty() ? tr("No file was chosen.") : out.errorString();
        setErrorMessage(tr("Failed to save image: ") + reason);
        return false;
    }
    setErrorMessage({});
    Q_EMIT saved(path);
    return true;
}

void ImageGeneratorViewModel::setGenerating(bool generating)
{
    if (m_isGenerating == generating) {
        return;
    }
    const bool could = canGenerate();
    m_isGenerating = generating;
    Q_EMIT isGeneratingChanged();
    if (could != canGenerate()) {
        Q_EMIT canGenerateChanged();
    }
}

void ImageGeneratorViewModel::setProgress(const QString &text, int queuePosition)
{
    if (m_progressText == text && m_queuePosition == queuePosition) {
        return;
    }
    m_progressText = text;
    m_queuePosition = queuePosition;
    Q_EMIT progressChanged();
}

void ImageGeneratorViewModel::setErrorMessage(const QString &message, bool opensSettings)
{
    opensSettings = opensSettings && !message.isEmpty();
    if (m_errorMessage == message && m_errorOpensSettings == opensSettings) {
        return;
    }
    m_errorMessage = message;
    m_errorOpensSettings = opensSettings;
    Q_EMIT errorMessageChanged();
}

} // namespace zentrik
