#include "model/imagecodec.h"

#include <stb_image.h>
#include <stb_image_write.h>

#include <limits>

namespace zentrik {

std::optional<Bitmap> ImageCodec::decode(const QByteArray &bytes)
{
    if (bytes.isEmpty() || bytes.size() > std::numeric_limits<int>::max()) {
        return std::nullopt;
    }
    const auto *data = reinterpret_cast<const stbi_uc *>(bytes.constData());
    const int length = int(bytes.size());
    int width = 0;
    int height = 0;
    int channels = 0;
    // Ask for the size first, so that a small file claiming a huge picture allocates nothing.
    if (stbi_info_from_memory(data, length, &width, &height, &channels) == 0 || width <= 0 || height <= 0
        || qint64(width) * height > maxPixels) {
        return std::nullopt;
    }
    stbi_uc *pixels = stbi_load_from_memory(data, length, &width, &height, &channels, 0);
    if (pixels == nullptr) {
        return std::nullopt;
    }
    Bitmap bitmap { width, height, channels,
        QByteArray(reinterpret_cast<const char *>(pixels), qsizetype(width) * height * channels) };
    stbi_image_free(pixels);
    return bitmap;
}

QByteArray ImageCodec::encodePng(const Bitmap &bitmap)
{
    if (bitmap.width <= 0 || bitmap.height <= 0 || bitmap.channels < 1 || bitmap.channels > 4
        || bitmap.pixels.size() != qsizetype(bitmap.width) * bitmap.height * bitmap.channels) {
        return {};
    }
    QByteArray png;
    const auto append = [](void *context, void *data, int size) {
        static_cast<QByteArray *>(context)->append(static_cast<const char *>(data), size);
    };
    if (stbi_write_png_to_func(append, &png, bitmap.width, bitmap.height, bitmap.channels, bitmap.pixels.constData(),
            bitmap.width * bitmap.channels)
        == 0) {
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
