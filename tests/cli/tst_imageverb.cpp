#include <QtTest>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "model/imagecodec.h"
#include "support/clirunner.h"
#include "support/fakeprovider.h"
#include "support/picture.h"
#include "support/providerfixture.h"
#include "support/testregistry.h"

using zentrik::Bitmap;
using zentrik::ImageCodec;
using zentrik::test::CliFixture;
using zentrik::test::ScriptedReply;

namespace {

ScriptedReply served(const QByteArray &bytes, const QByteArray &type)
{
    ScriptedReply reply = ScriptedReply::json(bytes);
    reply.contentType = type;
    return reply;
}

QSize pngSize(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray bytes = file.readAll();
    const std::optional<Bitmap> bitmap = ImageCodec::isPng(bytes) ? ImageCodec::decode(bytes) : std::nullopt;
    return bitmap ? QSize(bitmap->width, bitmap->height) : QSize();
}

} // namespace

// zentrik-cli image against the fake providers: one PNG file per run, whatever the provider
// answered with, and one line on failure.
class ImageVerbTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<CliFixture> m_cli;

    QString output(const char *name) const { return m_cli->dir.filePath(QString::fromLatin1(name)); }

    void scriptOpenAI(const QByteArray &picturePath)
    {
        m_cli->fake.on("POST", "/v1/images/generations",
            ScriptedReply::json(QJsonDocument(QJsonObject { { "data",
                QJsonArray { QJsonObject {
                    { "url", m_cli->fake.baseUrl().toString() + QString::fromUtf8(picturePath) } } } } })));
    }

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<CliFixture>(CliFixture::Keys {
            { "OPENAI_API_KEY", "sk-env" }, { "FAL_KEY", "fal-env" }, { "TOGETHER_API_KEY", "together-env" } });
    }

    void cleanup() { m_cli.reset(); }

    // A provider naming a local file or a device as its picture gets one line; nothing is
    // read (file:///dev/zero would never end) and no file is written.
    void refusesPictureAddressesThatAreNotRemote_data()
    {
        QTest::addColumn<QString>("address");
        QTest::newRow("a device") << "file:///dev/zero";
    }

    void refusesPictureAddressesThatAreNotRemote()
    {
        QFETCH(QString, address);
        m_cli->fake.on("POST", "/v1/images/generations",
            ScriptedReply::json(
                QJsonDocument(QJsonObject { { "data", QJsonArray { QJsonObject { { "url", address } } } } })));
        const CliResult result = runCli({ "image", "--model", "DALL-E", "-o", output("out.png"), "A quiet harbour" });
        QVERIFY(!result.crashed);
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.err, "zentrik-cli: Invalid image URL\n");
        QVERIFY(!QFile::exists(output("out.png")));
    }

    void writesThePictureAsPng_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<QByteArray>("format");
        QTest::newRow("Together, free model") << "black-forest-labs/FLUX.1-schnell-Free" << QByteArray("JPG");
        QTest::newRow("OpenAI, a PNG") << "DALL-E" << QByteArray("PNG");
        QTest::newRow("fal, a JPEG") << "fal-ai/fast-sdxl" << QByteArray("JPG");
    }

    void writesThePictureAsPng()
    {
        QFETCH(QString, model);
        QFETCH(QByteArray, format);
        const QByteArray picture = zentrik::test::picture(format.constData(), 72, 40);
        m_cli->fake.on("POST", "/v1/images/generations",
            ScriptedReply::json("{\"data\":[{\"b64_json\":\"" + picture.toBase64() + "\"}]}"));
        if (model == QLatin1String("DALL-E")) {
            scriptOpenAI("/pictures/p");
        }
        m_cli->fake.on("GET", "/pictures/p", served(picture, "application/octet-stream"));
        m_cli->fake.on("POST", "/fal-ai/fast-sdxl", ScriptedReply::json(R"({"request_id":"r"})"));
        m_cli->fake.on("GET", "/fal-ai/fast-sdxl/requests/r/status",
            ScriptedReply::json(R"({"status":"COMPLETED","response_url":"u"})"));
        m_cli->fake.on("GET", "/fal-ai/fast-sdxl/requests/r",
            ScriptedReply::json(QJsonDocument(QJsonObject { { "images",
                QJsonArray { QJsonObject { { "url", m_cli->fake.baseUrl().toString() + "/pictures/p" } } } } })));

        const CliResult result = runCli({ "image", "--model", model, "-o", output("out.png"), "A quiet harbour" });
        QVERIFY2(result.exitCode == 0, result.err.constData());
        QCOMPARE(result.out, QFileInfo(output("out.png")).absoluteFilePath().toUtf8() + '\n');
        QCOMPARE(pngSize(output("out.png")), QSize(72, 40));
        if (format == "PNG") {
            // Already a PNG: written as it came.
            QFile file(output("out.png"));
            QVERIFY(file.open(QIODevice::ReadOnly));
            QCOMPARE(file.readAll(), picture);
        }
        // Nothing left behind in the temporary folder: the free model's picture is gone once
        // the output file holds it.
        QCOMPARE(QDir(m_cli->dir.path()).entryList({ "*.png" }, QDir::Files), QStringList { "out.png" });
        const auto first = m_cli->fake.requests().first();
        QCOMPARE(first.json().object().value("prompt").toString(), "A quiet harbour");
        if (model.startsWith("black-forest-labs")) {
            QCOMPARE(first.header("Authorization"), "Bearer together-env");
        } else if (model == QLatin1String("DALL-E")) {
            QCOMPARE(first.header("Authorization"), "Bearer sk-env");
        } else {
            QCOMPARE(first.header("authorization"), "Key fal-env");
        }
    }

    // Without -o the picture lands in the current folder and never overwrites an earlier one.
    void numbersTheDefaultFileName()
    {
        scriptOpenAI("/pictures/p");
        m_cli->fake.on("GET", "/pictures/p", served(zentrik::test::picture("PNG"), "image/png"));
        QStringList written;
        for (int run = 0; run < 2; ++run) {
            const CliResult result = runCli({ "image", "--model", "DALL-E", "a cat" }, {}, {}, m_cli->dir.path());
            QCOMPARE(result.exitCode, 0);
            written.append(QString::fromUtf8(result.out).trimmed());
        }
        QCOMPARE(written,
            QStringList({ QDir(m_cli->dir.path()).absoluteFilePath("generated-image.png"),
                QDir(m_cli->dir.path()).absoluteFilePath("generated-image-2.png") }));
        QCOMPARE(pngSize(written.at(0)), QSize(64, 48));
        QCOMPARE(pngSize(written.at(1)), QSize(64, 48));
    }

    // The provider's answers are read by the image operation and checked there; these are
    // the verb's own failures.
    void failsWithOneLine_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<bool>("keys");
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("target");
        QTest::addColumn<QByteArray>("err");
        QTest::newRow("no key") << "DALL-E" << false << QByteArray() << "out.png"
                                << QByteArray("zentrik-cli: API key is missing. Please add it in Settings.");
        QTest::newRow("the address serves no picture")
            << "DALL-E" << true << QByteArray("serve text") << "out.png"
            << QByteArray("zentrik-cli: Failed to load image\nDetails: the answer is not a picture\n");
        QTest::newRow("the address answers 404")
            << "DALL-E" << true << QByteArray("serve 404") << "out.png"
            << QByteArray("zentrik-cli: Failed to load image\nDetails: HTTP 404\n");
        QTest::newRow("unwritable file") << "DALL-E" << true << QByteArray("serve png") << "missing/folder/out.png"
                                         << QByteArray("zentrik-cli: Failed to save image: ");
    }

    void failsWithOneLine()
    {
        QFETCH(QString, model);
        QFETCH(bool, keys);
        QFETCH(QByteArray, answer);
        QFETCH(QString, target);
        QFETCH(QByteArray, err);
        if (answer.startsWith("serve")) {
            scriptOpenAI("/pictures/p");
            if (answer == "serve 404") {
                m_cli->fake.on("GET", "/pictures/p", ScriptedReply::json(QByteArray("gone"), 404));
            } else {
                m_cli->fake.on("GET", "/pictures/p",
                    served(answer == "serve png" ? zentrik::test::picture("PNG") : QByteArray("<html>no</html>"),
                        "text/html"));
            }
        } else {
            m_cli->fake.on("POST", "/v1/images/generations", ScriptedReply::json(answer));
        }

        QProcessEnvironment env;
        if (!keys) {
            // Nor from the secret store: the test's own keyring holds no OpenAI key.
            for (const char *key : { "OPENAI_API_KEY", "FAL_KEY", "TOGETHER_API_KEY" }) {
                env.insert(key, "");
            }
        }
        const CliResult result
            = runCli({ "image", "--model", model, "-o", m_cli->dir.filePath(target), "a prompt" }, {}, env);
        if (!keys && result.exitCode == 0) {
            QSKIP("the secret store holds an OpenAI key");
        }
        QCOMPARE(result.exitCode, 1);
        QVERIFY(result.out.isEmpty());
        QVERIFY2(result.err.startsWith(err), result.err.constData());
        // One line, or the studio's own text and one "Details:" line under it.
        QCOMPARE(result.err.count('\n'), err.startsWith("zentrik-cli: Failed to load image\n") ? 2 : 1);
        QVERIFY(!QFileInfo::exists(m_cli->dir.filePath(target)));
        QVERIFY(!result.err.contains("sk-env") && !result.err.contains("fal-env"));
    }

    void refusesBadUsage_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("input");
        QTest::newRow("nothing to draw") << QStringList { "image" } << QByteArray("  \n");
        QTest::newRow("unknown option") << QStringList { "image", "--size", "256x256", "a" } << QByteArray();
    }

    void refusesBadUsage()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, input);
        const CliResult result = runCli(arguments, input);
        QCOMPARE(result.exitCode, 2);
        QVERIFY(result.out.isEmpty());
        QCOMPARE(m_cli->fake.requestCount(), 0);
    }
};

ZENTRIK_TEST(ImageVerbTest)

#include "tst_imageverb.moc"
