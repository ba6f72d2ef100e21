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

    // Runs done once unless context is destroyed first.
    static void load(HttpClient &http, const QString &address, const QString &cacheDirectory, QObject *context,
        const std::function<void(const Result &result)> &done);

    // http and https addresses with a host, and local file addresses.
    [[nodiscard]] static bool isUsableAddress(const QUrl &url);
};

} // namespace zentrik
