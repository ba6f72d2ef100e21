#include "model/imagecodec.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>

#include <cstring>

namespace zentrik {

namespace {

// The most a decoded picture may take, in MiB: maxPixels at four bytes a pixel. Readers
// that know the size up front are checked against maxPixels before they allocate; the
// limit stops those that do not.
constexpr int allocationLimitMiB = int(ImageCodec::maxPixels * 4 / (qint64(1024) * 1024));

bool tooLarge(const QSize &size)
{
    return qint64(size.width()) * size.height() > ImageCodec::maxPixels;
}

// The rows of an image without the padding QImage keeps at the end of each line.
QByteArray packedRows(const QImage &image, int channels)
{
    const qsizetype rowBytes = qsizetype(image.width()) * channels;
    QByteArray pixels(rowBytes * image.height(), Qt::Uninitialized);
    for (int y = 0; y < image.height(); ++y) {
        std::memcpy(pixels.data() + y * rowBytes, image.constScanLine(y), size_t(rowBytes));
    }
    return pixels;
}

} // namespace

std::optional<Bitmap> ImageCodec::decode(const QByteArray &bytes)
{
    if (bytes.isEmpty()) {
        return std::nullopt;
    }
    QBuffer buffer;
    buffer.setData(bytes);
    if (!buffer.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    // The limit is process-wide, not the reader's: this raises Qt's default of 128 MiB for
    // every QImageReader in the program, the window's pictures included.
    QImageReader::setAllocationLimit(allocationLimitMiB);
    QImageReader reader(&buffer);
    // Ask for the size first, so that a small file claiming a huge picture allocates nothing.
    const QSize claimed = reader.size();
    if (claimed.isValid() && (claimed.isEmpty() || tooLarge(claimed))) {
        return std::nullopt;
    }
    QImage image;
    if (!reader.read(&image) || image.isNull() || tooLarge(image.size())) {
        return std::nullopt;
    }
    const bool grey = image.format() == QImage::Format_Grayscale8 || image.format() == QImage::Format_Grayscale16
        || (image.colorCount() > 0 && !image.hasAlphaChannel() && image.isGrayscale());
    if (grey) {
        image.convertTo(QImage::Format_Grayscale8);
        return Bitmap { image.width(), image.height(), 1, packedRows(image, 1) };
    }
    if (image.hasAlphaChannel()) {
        image.convertTo(QImage::Format_RGBA8888);
        return Bitmap { image.width(), image.height(), 4, packedRows(image, 4) };
    }
    image.convertTo(QImage::Format_RGB888);
    return Bitmap { image.width(), image.height(), 3, packedRows(image, 3) };
}

QByteArray ImageCodec::encodePng(const Bitmap &bitmap)
{
    if (bitmap.width <= 0 || bitmap.height <= 0 || bitmap.channels < 1 || bitmap.channels > 4
        || bitmap.pixels.size() != qsizetype(bitmap.width) * bitmap.height * bitmap.channels) {
        return {};
    }
    const auto *pixels = reinterpret_cast<const uchar *>(bitmap.pixels.constData());
    const qsizetype rowBytes = qsizetype(bitmap.width) * bitmap.channels;
    QImage image;
    switch (bitmap.channels) {
    case 1:
        image = QImage(pixels, bitmap.width, bitmap.height, rowBytes, QImage::Format_Grayscale8);
        break;
    case 2:
        // Qt has no grey-and-alpha format: spread the grey over red, green and blue.
        image = QImage(bitmap.width, bitmap.height, QImage::Format_RGBA8888);
        if (image.isNull()) {
            return {};
        }
        for (int y = 0; y < bitmap.height; ++y) {
            const uchar *from = pixels + y * rowBytes;
            uchar *to = image.scanLine(y);
            for (qsizetype x = 0; x < bitmap.width; ++x) {
                to[4 * x] = to[4 * x + 1] = to[4 * x + 2] = from[2 * x];
                to[4 * x + 3] = from[2 * x + 1];
            }
        }
        break;
    case 3:
        image = QImage(pixels, bitmap.width, bitmap.height, rowBytes, QImage::Format_RGB888);
        break;
    default:
        image = QImage(pixels, bitmap.width, bitmap.height, rowBytes, QImage::Format_RGBA8888);
        break;
    }
    QByteArray png;
    QBuffer buffer(&png);
    if (image.isNull() || !buffer.open(QIODevice::WriteOnly)) {
        return {};
    }
    QImageWriter writer(&buffer, "png");
    if (!writer.write(image)) {
        return {};
    }
    return png;
}

QByteArray ImageCodec::toPng(const QByteArray &bytes)
{
    const std::optional<Bitmap> bitmap = decode(bytes);
    return bitmap ? encodePng(*bitmap) : QByteArray();
}

bool ImageCodec::isPng(const QByteArray &bytes)
{
    return bytes.startsWith(QByteArrayLiteral("\x89PNG\r\n\x1a\n"));
}

} // namespace zentrik
