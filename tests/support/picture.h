#pragma once

#include "model/imagecodec.h"

#include <QBuffer>
#include <QImage>

namespace zentrik::test {

// A small picture with a recognisable pattern (red grows to the right, green downwards), as
// "PNG" or "JPG" bytes.
inline QByteArray picture(const char *format, int width = 64, int height = 48)
{
    Bitmap bitmap { width, height, 3, QByteArray(qsizetype(width) * height * 3, '\0') };
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            char *pixel = bitmap.pixels.data() + (qsizetype(y) * width + x) * 3;
            pixel[0] = char(x * 255 / width);
            pixel[1] = char(y * 255 / height);
            pixel[2] = char(128);
        }
    }
    if (qstrcmp(format, "PNG") == 0) {
        return ImageCodec::encodePng(bitmap);
    }
    const QImage image(reinterpret_cast<const uchar *>(bitmap.pixels.constData()), width, height, qsizetype(width) * 3,
        QImage::Format_RGB888);
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPG", 95);
    return jpeg;
}

} // namespace zentrik::test
