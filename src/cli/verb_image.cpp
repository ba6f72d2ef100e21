// zentrik-cli image: one picture from a prompt with the selected (or given) image model,
// saved as a PNG file.
#include "clisession.h"
#include "verb.h"
#include "verbs.h"

#include "model/apimanager.h"
#include "model/imagecodec.h"
#include "model/imagerequests.h"
#include "model/providerrouting.h"
#include "tools/imageloader.h"
#include <QFile>

#include <QEventLoop>
#include <QFileInfo>
#include <QSaveFile>

using namespace zentrik;
using namespace zentrik::cli;

namespace {

const QString verbName = QStringLiteral("image");
const QString defaultFileName = QStringLiteral("generated-image.png");

// "generated-image.png", or the first of "generated-image-2.png", "-3", … that does not
// exist yet, so that a second run never overwrites the first picture.
QString freshDefaultPath()
{
    QString path = defaultFileName;
    for (int n = 2; QFileInfo::exists(path); ++n) {
        path = QStringLiteral("generated-image-%1.png").arg(n);
    }
    return path;
}

// The image studio's own failure text, with what went wrong on a second line.
QString loadFailure(const QString &detail)
{
    return QStringLiteral("Failed to load image\nDetails: %1").arg(detail);
}

// The bytes at the address the image operation handed back, fetched as the window fetches
// them; the free model's picture is a file this program wrote, any other picture comes from
// an http or https address, never from wherever a provider points. On failure the message
// to print.
std::variant<QByteArray, QString> fetch(APIManager &manager, const QString &address, bool ownFile)
{
    if (!ownFile && !ImageRequests::isRemotePictureAddress(address)) {
        return ImageRequests::refusedPictureAddress().message();
    }
    QEventLoop loop;
    std::variant<QByteArray, QString> outcome = QString();
    ImageLoader::download(manager.httpClient(), address, &loop, [&](const ImageLoader::DownloadResult &result) {
        if (const auto *failure = std::get_if<ImageLoader::Failure>(&result)) {
            outcome = failure->detail.isEmpty() ? failure->message : loadFailure(failure->detail);
        } else if (const auto &download = std::get<ImageLoader::Download>(result);
                   download.status != 0 && (download.status < 200 || download.status >= 300)) {
            outcome = loadFailure(QStringLiteral("HTTP %1").arg(download.status));
        } else {
            outcome = download.bytes;
        }
        loop.quit();
    });
    loop.exec();
    return outcome;
}

int runImage(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Generates a picture from the prompt with the selected image model and saves it as a PNG "
        "file. \"DALL-E\" uses OpenAI (OPENAI_API_KEY or the stored key), the free FLUX model "
        "Together (TOGETHER_API_KEY when set, otherwise the built-in key), every other model fal (FAL_KEY or the "
        "stored key). Prints the path of the file written."));
    const QCommandLineOption modelOption(
        QStringLiteral("model"), QStringLiteral("Use this image model for this run."), QStringLiteral("ID"));
    const QCommandLineOption outputOption({ QStringLiteral("o"), QStringLiteral("output") },
        QStringLiteral("Write the picture to FILE (default: %1 in the current folder, numbered when it "
                       "exists).")
            .arg(defaultFileName),
        QStringLiteral("FILE"));
    parser.addOption(modelOption);
    parser.addOption(outputOption);
    parser.addPositionalArgument(
        QStringLiteral("PROMPT"), QStringLiteral("What the picture shows; - or nothing reads stdin."));
    if (auto exit = parseArguments(parser, verbName, arguments)) {
        return *exit;
    }
    const QStringList positional = parser.positionalArguments();
    if (positional.size() > 1) {
        return usageError(verbName, QStringLiteral("image takes one PROMPT (quote it)"));
    }
    if (parser.isSet(outputOption) && parser.value(outputOption).isEmpty()) {
        return usageError(verbName, QStringLiteral("-o needs a file name"));
    }
    const std::optional<QString> input = textArgument(positional);
    if (!input) {
        return exitFailure;
    }
    const QString prompt = input->trimmed();
    if (prompt.isEmpty()) {
        return usageError(verbName, QStringLiteral("nothing to draw: give PROMPT or pipe it in"));
    }

    if (!environmentKeysUsable()) {
        return exitFailure;
    }
    APIManager manager(APIManager::KeyReading::onRequest);
    manager.overrideTogetherKey(qEnvironmentVariable("TOGETHER_API_KEY"));
    if (parser.isSet(modelOption)) {
        manager.setSelectedImageModel(parser.value(modelOption));
    }
    QStringList accounts;
    switch (routeImageModel(manager.selectedImageModel())) {
    case ImageProvider::openAI:
        accounts.append(QString::fromLatin1(APIManager::openAIAccount));
        break;
    case ImageProvider::fal:
        accounts.append(QString::fromLatin1(APIManager::falAccount));
        break;
    case ImageProvider::together:
        break;
    }
    if (!loadKeys(manager, accounts)) {
        return exitFailure;
    }

    QEventLoop loop;
    std::optional<ImageResult> result;
    int lastPosition = -1;
    manager.generateImage(
        prompt, &loop,
        [&](const ImageResult &outcome) {
            result = outcome;
            loop.quit();
        },
        [&](const fal::QueueStatus &status) {
            if (status.state() == fal::QueueStatus::State::inQueue && status.position() != lastPosition) {
                lastPosition = status.position();
                printErr(QStringLiteral("In queue (position %1)\n").arg(lastPosition));
            }
        });
    loop.exec();
    if (const auto *error = std::get_if<ImageError>(&*result)) {
        return fail(error->message());
    }

    const bool ownFile = routeImageModel(manager.selectedImageModel()) == ImageProvider::together;
    const auto fetched = fetch(manager, std::get<QString>(*result), ownFile);
    if (const auto *message = std::get_if<QString>(&fetched)) {
        return fail(*message);
    }
    QByteArray png = std::get<QByteArray>(fetched);
    if (!ImageCodec::isPng(png)) {
        // fal models often answer with JPEG; the file promised is a PNG.
        png = ImageCodec::toPng(png);
        if (png.isEmpty()) {
            return fail(loadFailure(QStringLiteral("the answer is not a picture")));
        }
    }

    const QString path = parser.isSet(outputOption) ? parser.value(outputOption) : freshDefaultPath();
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(png) != png.size() || !file.commit()) {
        return fail(QStringLiteral("Failed to save image: %1").arg(file.errorString()));
    }
    // The temporary picture has done its job once the user's file holds it.
    if (const QUrl written(std::get<QString>(*result)); ownFile && written.isLocalFile()) {
        QFile::remove(written.toLocalFile());
    }
    printOut(QFileInfo(path).absoluteFilePath() + QLatin1Char('\n'));
    return exitSuccess;
}

} // namespace

zentrik::cli::Verb zentrik::cli::imageVerb()
{
    return { verbName, QStringLiteral("Generate a picture from a prompt and save it as PNG"), runImage };
}
