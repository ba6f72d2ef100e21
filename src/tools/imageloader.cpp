#include "tools/imageloader.h"

#include "model/apierror.h"
#include "model/backgroundtask.h"
#include "model/imagecodec.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QUuid>

namespace zentrik {

namespace {

QString invalidImageUrl()
{
    return QCoreApplication::translate("ImageGeneratorViewModel", "Invalid image URL");
}

QString failedToLoad()
{
    return QCoreApplication::translate("ImageGeneratorViewModel", "Failed to load image");
}

// Decodes and re-encodes on a worker thread; writes a copy for display when the picture has
// no local file of its own.
ImageLoader::Result decode(const QByteArray &bytes, const QUrl &localFile, const QString &cacheDirectory)
{
    const std::optional<Bitmap> bitmap = ImageCodec::decode(bytes);
    if (!bitmap) {
        return failedToLoad();
    }
    ImageLoader::Picture picture;
    picture.size = QSize(bitmap->width, bitmap->height);
    picture.png = ImageCodec::encodePng(*bitmap);
    if (picture.png.isEmpty()) {
        return failedToLoad();
    }
    if (localFile.isValid()) {
        picture.displayUrl = localFile;
        return picture;
    }
    const QString path
        = QDir(cacheDirectory)
              .absoluteFilePath(QUuid::createUuid().toString(QUuid::WithoutBraces) + QStringLiteral(".png"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly, QFileDevice::ReadOwner | QFileDevice::WriteOwner)
        || file.write(picture.png) != picture.png.size()) {
        return failedToLoad();
    }
    picture.displayUrl = QUrl::fromLocalFile(path);
    return picture;
}

} // namespace

bool ImageLoader::isUsableAddress(const QUrl &url)
{
    if (!url.isValid()) {
        return false;
    }
    if (url.isLocalFile()) {
        return !url.toLocalFile().isEmpty();
    }
    const QString scheme = url.scheme();
    return (scheme == QLatin1String("http") || scheme == QLatin1String("https")) && !url.host().isEmpty();
}

void ImageLoader::download(HttpClient &http, const QString &address, QObject *context,
    const std::function<void(const DownloadResult &result)> &done)
{
    const QUrl url(address, QUrl::StrictMode);
    if (!isUsableAddress(url)) {
        QMetaObject::invokeMethod(
            context,
            [done] {
                done(Failure { invalidImageUrl(), {} });
            },
            Qt::QueuedConnection);
        return;
    }
    if (url.isLocalFile()) {
        runInBackground(
            context,
            [url]() -> DownloadResult {
                QFile file(url.toLocalFile());
                if (!file.open(QIODevice::ReadOnly)) {
                    return Failure { failedToLoad(), file.errorString() };
                }
                // Bounded like a download: a device such as /dev/zero never ends.
                const QByteArray bytes = file.read(HttpClient::maxReplySize + 1);
                if (bytes.size() > HttpClient::maxReplySize) {
                    return Failure { failedToLoad(),
                        QStringLiteral("larger than %1 MB").arg(HttpClient::maxReplySize / (qsizetype(1024) * 1024)) };
                }
                return Download { bytes, 0 };
            },
            done);
        return;
    }
    HttpRequest request;
    request.url = url;
    http.send(std::move(request), context, [done](const HttpResult &result) {
        if (const auto *error = std::get_if<TransportError>(&result)) {
            const QString message = APIError::fromTransport(*error).message();
            done(Failure { message, message });
            return;
        }
        const auto &response = std::get<HttpResponse>(result);
        done(Download { response.body, response.status });
    });
}

void ImageLoader::load(HttpClient &http, const QString &address, const QString &cacheDirectory, QObject *context,
    const std::function<void(const Result &result)> &done)
{
    const QUrl url(address, QUrl::StrictMode);
    const QUrl localFile = url.isLocalFile() ? url : QUrl();
    download(http, address, context, [context, cacheDirectory, localFile, done](const DownloadResult &result) {
        if (const auto *failure = std::get_if<Failure>(&result)) {
            done(failure->message);
            return;
        }
        // Whatever came back, an error page included, is judged by whether it is a picture.
        const QByteArray bytes = std::get<Download>(result).bytes;
        runInBackground(
            context, [bytes, localFile, cacheDirectory] { return decode(bytes, localFile, cacheDirectory); }, done);
    });
}

} // namespace zentrik
