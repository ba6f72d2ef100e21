#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace zentrik {

// Pixels of a decoded picture: rows top to bottom, `channels` bytes per pixel (1 grey,
// 2 grey and alpha, 3 RGB, 4 RGBA).
struct Bitmap
{
    int width = 0;
    int height = 0;
    int channels = 0;
    QByteArray pixels;
};

// Image decoding and PNG encoding through Qt's image readers and writers, which need no
// GUI application or display, so that the command line and the model library can check and
// convert pictures as the window does. Safe to use from any thread.
class ImageCodec
{
public:
    // Pictures larger than this are refused rather than decoded into gigabytes.
    static constexpr qint64 maxPixels = qint64(8192) * 8192;

    // PNG, JPEG, GIF (first frame), BMP, PBM/PGM/PPM and whatever other format Qt reads;
    // std::nullopt when the bytes are none of these, are damaged or are too large. Grey
    // pictures come back with one channel, pictures with transparency with four, others
    // with three.
    [[nodiscard]] static std::optional<Bitmap> decode(const QByteArray &bytes);
    // The PNG file of the bitmap; empty when it cannot be made.
    [[nodiscard]] static QByteArray encodePng(const Bitmap &bitmap);
    // The picture in bytes re-encoded as PNG; empty when the bytes are not a picture.
    [[nodiscard]] static QByteArray toPng(const QByteArray &bytes);
    // Whether the bytes begin with the PNG signature.
    [[nodiscard]] static bool isPng(const QByteArray &bytes);
};

} // namespace zentrik
