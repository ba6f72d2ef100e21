#pragma once

#include "net/httpclient.h"

#include <QByteArray>
#include <QSize>
#include <QString>
#include <QUrl>

#include <functional>
#include <variant>

namespace zentrik {

// Brings the picture at an address onto the screen: a remote picture is fetched with one
// plain GET, a local file is read; either way the bytes must decode as a picture, which is
// then kept as PNG. Decoding runs off the calling thread; the result arrives on it.
class ImageLoader
{
public:
    struct Picture
    {
        // The picture re-encoded as PNG, ready to be saved.
        QByteArray png;
        QSize size;
        // Where the view shows it from: the local file itself, or a PNG copy of a remote
        // picture written into the cache directory.
        QUrl displayUrl;
    };
    // The picture, or the message to show.
    using Result = std::variant<Picture, QString>;

    // What an address held, as it came: a local file's bytes, or the body of the GET with its
    // HTTP status (0 for a file).
    struct Download
    {
        QByteArray bytes;
        int status = 0;
    };
    // Why nothing came: the message to show, and the reason when there is one (why a file
    // could not be read, or what the connection did); none for an address that is no picture's.
    struct Failure
    {
        QString message;
        QString detail;
    };
    using DownloadResult = std::variant<Download, Failure>;

    // Reads or fetches what the address holds, without judging it; a file is read off the
    // calling thread. Runs done once unless context is destroyed first.
    static void download(HttpClient &http, const QString &address, QObject *context,
        const std::function<void(const DownloadResult &result)> &done);

    // Runs done once unless context is destroyed first.
    static void load(HttpClient &http, const QString &address, const QString &cacheDirectory, QObject *context,
        const std::function<void(const Result &result)> &done);

    // http and https addresses with a host, and local file addresses.
    [[nodiscard]] static bool isUsableAddress(const QUrl &url);
};

} // namespace zentrik
