#pragma once

#include <QBuffer>
#include <QImage>
#include <QTemporaryDir>

#include <memory>

#include "model/apimanager.h"
#include "model/imagecodec.h"
#include "support/fakeprovider.h"

// An APIManager whose OpenAI, Together and fal addresses point at one fake provider, with
// keys for every provider, its preferences in a scratch directory and the temporary
// directory (where Together pictures are written) in another, so a test sees exactly the
// files it caused.
class ImageFixture
{
public:
    explicit ImageFixture(const QString &imageModel = QStringLiteral("DALL-E"))
        : fake(std::make_unique<zentrik::test::FakeProvider>())
    {
        m_previousTmp = qgetenv("TMPDIR");
        qputenv("TMPDIR", m_tmp.path().toUtf8());
        qputenv("ZENTRIK_CONFIG_DIR", m_config.path().toUtf8());
        const QByteArray base = fake->baseUrl().toString().toUtf8();
        for (const char *variable : addressVariables) {
            qputenv(variable, base);
        }
        manager = std::make_unique<zentrik::APIManager>();
        manager->overrideUserKeys(QStringLiteral("sk-openai"), {}, QStringLiteral("fal-key"));
        manager->overrideTogetherKey(QStringLiteral("together-key"));
        manager->setSelectedImageModel(imageModel);
    }

    ~ImageFixture()
    {
        manager.reset();
        fake.reset();
        for (const char *variable : addressVariables) {
            qunsetenv(variable);
        }
        qunsetenv("ZENTRIK_CONFIG_DIR");
        if (m_previousTmp.isEmpty()) {
            qunsetenv("TMPDIR");
        } else {
            qputenv("TMPDIR", m_previousTmp);
        }
    }

    ImageFixture(const ImageFixture &) = delete;
    ImageFixture &operator=(const ImageFixture &) = delete;

    [[nodiscard]] QString tempPath() const { return m_tmp.path(); }

    static constexpr const char *addressVariables[]
        = { "ZENTRIK_OPENAI_BASE_URL", "ZENTRIK_TOGETHER_BASE_URL", "ZENTRIK_FAL_QUEUE_URL", "ZENTRIK_FAL_REST_URL" };

    // A small picture with a recognisable pattern (red grows to the right, green downwards),
    // as "PNG" or "JPG" bytes.
    static QByteArray picture(const char *format, int width = 64, int height = 48)
    {
        zentrik::Bitmap bitmap { width, height, 3, QByteArray(qsizetype(width) * height * 3, '\0') };
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                char *pixel = bitmap.pixels.data() + (qsizetype(y) * width + x) * 3;
                pixel[0] = char(x * 255 / width);
                pixel[1] = char(y * 255 / height);
                pixel[2] = char(128);
            }
        }
        if (qstrcmp(format, "PNG") == 0) {
            return zentrik::ImageCodec::encodePng(bitmap);
        }
        const QImage image(reinterpret_cast<const uchar *>(bitmap.pixels.constData()), width, height,
            qsizetype(width) * 3, QImage::Format_RGB888);
        QByteArray jpeg;
        QBuffer buffer(&jpeg);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "JPG", 95);
        return jpeg;
    }

private:
    QTemporaryDir m_config;
    QTemporaryDir m_tmp;
    QByteArray m_previousTmp;

public:
    std::unique_ptr<zentrik::test::FakeProvider> fake;
    std::unique_ptr<zentrik::APIManager> manager;
};
