#include <QtTest>

#include <QJsonArray>
#include <QJsonDocument>

#include <QDir>
#include <QImageReader>
#include <QJsonDocument>

#include "model/imagecodec.h"
#include "model/imagerequests.h"
#include "support/completion.h"
#include "support/picture.h"
#include "support/providerfixture.h"
#include "support/testregistry.h"

using namespace zentrik;
using test::ProviderFixture;
using namespace std::chrono_literals;
using test::ScriptedReply;

namespace {

const QByteArray imagesPath = "/v1/images/generations";

QByteArray togetherAnswer(const QByteArray &imageBytes)
{
    return "{\"id\":\"t\",\"model\":\"black-forest-labs/"
           "FLUX.1-schnell-Free\",\"object\":\"list\",\"data\":[{\"index\":0,\"b64_json\":\""
        + imageBytes.toBase64() + "\",\"timings\":{\"inference\":0.5}}]}";
}

// The result of a generation that completed exactly once, after the call had returned;
// otherwise none, and the fault says what happened instead.
struct Outcome
{
    QString fault;
    std::optional<ImageResult> result;

    [[nodiscard]] QString address() const
    {
        return result && std::holds_alternative<QString>(*result) ? std::get<QString>(*result) : QString();
    }
    [[nodiscard]] const ImageError *error() const { return result ? std::get_if<ImageError>(&*result) : nullptr; }
    [[nodiscard]] QString describe() const
    {
        if (!result) {
            return fault;
        }
        return error() ? QStringLiteral("error: ") + error()->message() : QStringLiteral("ok: ") + address();
    }
};

// The provider's answer for one generation, by provider.
void script(ProviderFixture &fixture, const QString &provider, const QByteArray &answer, int status = 200)
{
    if (provider == QLatin1String("fal")) {
        fixture.fake->on("POST", "/fal-ai/flux/schnell", ScriptedReply::json(R"({"request_id":"r1"})"));
        fixture.fake->on("GET", "/fal-ai/flux/schnell/requests/r1/status",
            ScriptedReply::json(R"({"status":"COMPLETED","response_url":"u"})"));
        fixture.fake->on("GET", "/fal-ai/flux/schnell/requests/r1", ScriptedReply::json(answer, status));
        return;
    }
    fixture.fake->on("POST", imagesPath, ScriptedReply::json(answer, status));
}

QString modelFor(const QString &provider)
{
    if (provider == QLatin1String("OpenAI")) {
        return QStringLiteral("DALL-E");
    }
    if (provider == QLatin1String("Together")) {
        return QStringLiteral("black-forest-labs/FLUX.1-schnell-Free");
    }
    return QStringLiteral("fal-ai/flux/schnell");
}

} // namespace

// The image operation of APIManager against the fake providers: which provider a model goes
// to, the exact requests, and how each answer becomes an address or an error.
class TestImageGeneration : public QObject
{
    Q_OBJECT

    Outcome generate(ProviderFixture &fixture, const QString &prompt = QStringLiteral("A red fox in the snow"))
    {
        test::Completion<ImageResult> done;
        fixture.manager->generateImage(prompt, this, done.callback());
        done.started();
        Outcome outcome;
        if (done.waitOnce()) {
            outcome.result = done.result();
        } else {
            outcome.fault = done.fault();
        }
        return outcome;
    }

private Q_SLOTS:
    void sendsEachProviderItsRequest_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QList<QByteArrayList>>("headers");

        QTest::newRow("DALL-E to OpenAI")
            << "DALL-E" << imagesPath
            << QByteArray(R"({"model":"dall-e-3","prompt":"A red fox in the snow","n":1,"size":"1024x1024"})")
            << QList<QByteArrayList> { { "Content-Type", "application/json" },
                   { "Authorization", "Bearer sk-openai" } };
        QTest::newRow("free FLUX to Together")
            << "black-forest-labs/FLUX.1-schnell-Free" << imagesPath
            << QByteArray(R"({"model":"black-forest-labs/FLUX.1-schnell-Free","prompt":"A red fox in the snow",)"
                          R"("width":1024,"height":768,"steps":4,"n":1,"response_format":"b64_json"})")
            << QList<QByteArrayList> { { "Content-Type", "application/json" },
                   { "Authorization", "Bearer together-key" } };
        QTest::newRow("catalogue model to fal")
            << "fal-ai/flux/schnell" << QByteArray("/fal-ai/flux/schnell")
            << QByteArray(R"({"prompt":"A red fox in the snow"})")
            << QList<QByteArrayList> { { "accept", "application/json" }, { "content-type", "application/json" },
                   { "authorization", "Key fal-key" } };
        QTest::newRow("unknown model to fal as an application")
            << "someone/brand-new-model" << QByteArray("/someone/brand-new-model")
            << QByteArray(R"({"prompt":"A red fox in the snow"})")
            << QList<QByteArrayList> { { "authorization", "Key fal-key" } };
    }

    void sendsEachProviderItsRequest()
    {
        QFETCH(QString, model);
        QFETCH(QByteArray, path);
        QFETCH(QByteArray, body);
        QFETCH(QList<QByteArrayList>, headers);

        ProviderFixture fixture(model);
        fixture.fake->on(
            "POST", imagesPath, ScriptedReply::json("{\"data\":[{\"url\":\"https://img.example/1.png\"}]}"));
        if (path != imagesPath) {
            fixture.fake->on("POST", path, ScriptedReply::json(R"({"request_id":"r1"})"));
        }
        fixture.fake->on(
            "GET", path + "/requests/r1/status", ScriptedReply::json(R"({"status":"COMPLETED","response_url":"u"})"));
        fixture.fake->on(
            "GET", path + "/requests/r1", ScriptedReply::json("{\"images\":[{\"url\":\"https://f/1.png\"}]}"));
        if (model.startsWith(QLatin1String("black-forest-labs"))) {
            fixture.fake->on("POST", imagesPath, ScriptedReply::json(togetherAnswer(test::picture("PNG"))));
        }
        const Outcome outcome = generate(fixture);
        QVERIFY2(!outcome.error(), qPrintable(outcome.describe()));

        const auto first = fixture.fake->requests().first();
        QCOMPARE(first.method, "POST");
        QCOMPARE(first.path, path);
        // Exactly these members, numbers as numbers: no size of the screen's choosing.
        QCOMPARE(first.json(), QJsonDocument::fromJson(body));
        for (const QByteArrayList &header : headers) {
            QCOMPARE(first.header(header.at(0)), header.at(1));
        }
    }

    void readsOpenAIAndTogetherAnswersInOrder_data()
    {
        QTest::addColumn<QString>("provider");
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("kind"); // APIError::Kind
        QTest::addColumn<QString>("message");

        for (const char *provider : { "OpenAI", "Together" }) {
            const auto row = [provider](const char *name) { return &QTest::addRow("%s: %s", provider, name); };
            *row("no body") << provider << QByteArray() << 200 << int(APIError::noData)
                            << "No data received from the server.";
            *row("not JSON") << provider << QByteArray("<html>busy</html>") << 200 << int(APIError::jsonParsingFailed)
                             << "Failed to parse the server response: ";
            *row("empty data") << provider << QByteArray(R"({"data":[]})") << 200 << int(APIError::invalidResponse)
                               << "Invalid response received from the server.";
            *row("data of non-objects") << provider << QByteArray(R"({"data":["x"]})") << 200
                                        << int(APIError::invalidResponse)
                                        << "Invalid response received from the server.";
            *row("error status with a JSON body")
                << provider << QByteArray(R"({"error":{"message":"Incorrect API key"}})") << 401
                << int(APIError::invalidResponse) << "Invalid response received from the server.";
        }
        QTest::newRow("OpenAI: only b64_json")
            << "OpenAI" << QByteArray(R"({"data":[{"b64_json":"AAAA"}]})") << 200 << int(APIError::invalidResponse)
            << "Invalid response received from the server.";
        QTest::newRow("Together: only a url")
            << "Together" << QByteArray("{\"data\":[{\"url\":\"https://x/y.png\"}]}") << 200
            << int(APIError::invalidResponse) << "Invalid response received from the server.";
        QTest::newRow("Together: not Base64")
            << "Together" << QByteArray(R"({"data":[{"b64_json":"@@not base64@@"}]})") << 200
            << int(APIError::invalidResponse) << "Invalid response received from the server.";
        QTest::newRow("Together: Base64 with line breaks")
            << "Together"
            << QByteArray("{\"data\":[{\"b64_json\":\"" + test::picture("PNG").toBase64().insert(40, "\\n") + "\"}]}")
            << 200 << int(APIError::invalidResponse) << "Invalid response received from the server.";
        QTest::newRow("Together: bytes that are no picture")
            << "Together" << togetherAnswer("just some text, not an image") << 200 << int(APIError::invalidResponse)
            << "Invalid response received from the server.";
        QTest::newRow("Together: a truncated picture")
            << "Together" << togetherAnswer(test::picture("PNG").left(60)) << 200 << int(APIError::invalidResponse)
            << "Invalid response received from the server.";
    }

    void readsOpenAIAndTogetherAnswersInOrder()
    {
        QFETCH(QString, provider);
        QFETCH(QByteArray, answer);
        QFETCH(int, status);
        QFETCH(int, kind);
        QFETCH(QString, message);

        ProviderFixture fixture(modelFor(provider));
        script(fixture, provider, answer, status);
        const Outcome outcome = generate(fixture);
        QVERIFY2(outcome.error(), qPrintable(outcome.describe()));
        const APIError *error = outcome.error()->get<APIError>();
        QVERIFY(error);
        QCOMPARE(int(error->kind()), kind);
        QVERIFY2(error->message().startsWith(message), qPrintable(error->message()));
        if (error->kind() == APIError::jsonParsingFailed) {
            QVERIFY(!error->description().isEmpty()); // the parser's own words
        }
        QVERIFY(QDir(fixture.tempPath()).isEmpty());
    }

    void mapsTransportFailures_data()
    {
        QTest::addColumn<QString>("provider");
        QTest::newRow("OpenAI") << "OpenAI";
        QTest::newRow("Together") << "Together";
    }

    void mapsTransportFailures()
    {
        QFETCH(QString, provider);
        ProviderFixture fixture(modelFor(provider));
        fixture.fake->on(
            "POST", imagesPath, ScriptedReply::truncated("{\"data\":[{\"url\":\"https://x/1.png\"}]}", 10));
        const Outcome outcome = generate(fixture);
        QVERIFY(outcome.error());
        const APIError *error = outcome.error()->get<APIError>();
        QVERIFY(error);
        QVERIFY2(error->kind() == APIError::connectionLost || error->kind() == APIError::generalNetworkError,
            qPrintable(error->message()));
    }

    void returnsTheOpenAIAddress()
    {
        ProviderFixture fixture(QStringLiteral("DALL-E"));
        script(fixture, QStringLiteral("OpenAI"),
            "{\"created\":1,\"data\":[{\"revised_prompt\":\"r\",\"url\":\"https://oaidalle.example/"
            "img-1.png?sig=x\"}]}");
        const Outcome outcome = generate(fixture);
        QCOMPARE(outcome.address(), "https://oaidalle.example/img-1.png?sig=x");
    }

    // Two generations in a row: two fresh files in the temporary directory, each a PNG of
    // the picture that was sent, whatever format it arrived in.
    void writesEachTogetherPictureToAFreshPngFile_data()
    {
        QTest::addColumn<QByteArray>("format");
        QTest::newRow("PNG") << QByteArray("PNG");
        QTest::newRow("JPEG") << QByteArray("JPG");
    }

    void writesEachTogetherPictureToAFreshPngFile()
    {
        QFETCH(QByteArray, format);
        ProviderFixture fixture(QStringLiteral("black-forest-labs/FLUX.1-schnell-Free"));
        script(fixture, QStringLiteral("Together"), togetherAnswer(test::picture(format, 80, 60)));

        QStringList files;
        for (int i = 0; i < 2; ++i) {
            const Outcome outcome = generate(fixture);
            QVERIFY2(!outcome.error(), qPrintable(outcome.describe()));
            const QUrl address(outcome.address());
            QVERIFY(address.isLocalFile());
            files.append(address.toLocalFile());
        }
        QVERIFY(files.at(0) != files.at(1));
        QCOMPARE(QDir(fixture.tempPath()).entryList(QDir::Files).size(), 2);
        const QRegularExpression uuidName(
            QStringLiteral("^[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}\\.png$"));
        for (const QString &file : files) {
            QCOMPARE(QFileInfo(file).absolutePath(), QDir(fixture.tempPath()).absolutePath());
            QVERIFY2(uuidName.match(QFileInfo(file).fileName()).hasMatch(), qPrintable(file));
            QImageReader reader(file);
            QCOMPARE(reader.format(), "png");
            // In a folder every user shares, the picture is for its owner's eyes only.
            const auto others
                = QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ReadOther | QFileDevice::WriteOther;
            QCOMPARE(QFileInfo(file).permissions() & others, QFileDevice::Permissions());
            const QImage image = reader.read();
            QCOMPARE(image.size(), QSize(80, 60));
            // The pattern survives (JPEG only approximately).
            QVERIFY(qAbs(qRed(image.pixel(79, 0)) - 252) < 12);
            QVERIFY(qAbs(qGreen(image.pixel(0, 59)) - 250) < 12);
        }
    }

    void reportsFalResultsWithoutAnAddress_data()
    {
        QTest::addColumn<QByteArray>("result");
        QTest::newRow("images without url") << QByteArray(R"({"images":[{"content_type":"image/jpeg","width":1}]})");
        QTest::newRow("url not a string") << QByteArray(R"({"images":[{"url":{"href":"x"}}]})");
        QTest::newRow("empty images") << QByteArray(R"({"images":[]})");
        QTest::newRow("first image not an object") << QByteArray("{\"images\":[\"https://x/1.png\"]}");
    }

    void reportsFalResultsWithoutAnAddress()
    {
        QFETCH(QByteArray, result);
        ProviderFixture fixture(QStringLiteral("fal-ai/flux/schnell"));
        script(fixture, QStringLiteral("fal"), result);
        const Outcome outcome = generate(fixture);
        QVERIFY(outcome.error());
        const DomainError *error = outcome.error()->get<DomainError>();
        QVERIFY2(error, qPrintable(outcome.describe()));
        QCOMPARE(error->domain, "ImageGeneration");
        QCOMPARE(error->code, 0);
        QCOMPARE(outcome.error()->message(), "No image URL found in response");
    }

    void returnsTheFalAddress()
    {
        ProviderFixture fixture(QStringLiteral("fal-ai/flux/schnell"));
        script(fixture, QStringLiteral("fal"),
            "{\"images\":[{\"url\":\"https://fal.media/files/"
            "a.jpg\",\"width\":1024,\"height\":768,\"content_type\":\"image/jpeg\"}],\"seed\":42}");
        const Outcome outcome = generate(fixture);
        QCOMPARE(outcome.address(), "https://fal.media/files/a.jpg");
    }

    // A picture address must be one to download: a provider naming a local file, a device or
    // inline data gets one clear error and nothing is read.
    void refusesPictureAddressesThatAreNotRemote_data()
    {
        QTest::addColumn<QString>("provider");
        QTest::addColumn<QString>("address");
        for (const QString &provider : { QStringLiteral("OpenAI"), QStringLiteral("fal") }) {
            for (const QString &address : { QStringLiteral("file:///dev/zero"),
                     QStringLiteral("data:image/png;base64,iVBORw0KGgo="), QStringLiteral("https:///no-host.png") }) {
                QTest::addRow("%s, %s", qPrintable(provider), qPrintable(address)) << provider << address;
            }
        }
    }

    void refusesPictureAddressesThatAreNotRemote()
    {
        QFETCH(QString, provider);
        QFETCH(QString, address);
        ProviderFixture fixture(modelFor(provider));
        const QByteArray quoted = QJsonDocument(QJsonArray { address }).toJson(QJsonDocument::Compact).mid(1);
        const QByteArray value = quoted.left(quoted.size() - 1);
        script(fixture, provider,
            provider == QLatin1String("fal") ? "{\"images\":[{\"url\":" + value + "}]}"
                                             : "{\"data\":[{\"url\":" + value + "}]}");
        const Outcome outcome = generate(fixture);
        QVERIFY2(outcome.error(), qPrintable(outcome.describe()));
        QCOMPARE(outcome.error()->message(), "Invalid image URL");
    }

    void reportsQueuePositionsAndTimesOut()
    {
        ProviderFixture fixture(QStringLiteral("fal-ai/flux/schnell"));
        fixture.manager->setFalPolling(5ms, 120ms);
        fixture.fake->on("POST", "/fal-ai/flux/schnell", ScriptedReply::json(R"({"request_id":"r1"})"));
        fixture.fake->on("GET", "/fal-ai/flux/schnell/requests/r1/status",
            ScriptedReply::json(R"({"status":"IN_QUEUE","queue_position":3,"response_url":"u"})"));
        QList<int> positions;
        test::Completion<ImageResult> done;
        fixture.manager->generateImage(QStringLiteral("p"), this, done.callback(),
            [&positions](const fal::QueueStatus &status) { positions.append(status.position()); });
        done.started();
        QVERIFY2(done.waitOnce(), qPrintable(done.fault()));
        QVERIFY(std::holds_alternative<ImageError>(done.result()));
        const fal::FalError *error = std::get<ImageError>(done.result()).get<fal::FalError>();
        QVERIFY(error);
        QCOMPARE(error->kind(), fal::FalError::Kind::queueTimeout);
        QVERIFY(positions.size() >= 2);
        QVERIFY(std::all_of(positions.begin(), positions.end(), [](int p) { return p == 3; }));
    }

    void refusesAMissingKeyWithoutSending_data()
    {
        QTest::addColumn<QString>("model");
        QTest::newRow("DALL-E") << "DALL-E";
        QTest::newRow("fal") << "fal-ai/flux-pro";
    }

    void refusesAMissingKeyWithoutSending()
    {
        QFETCH(QString, model);
        ProviderFixture fixture(model);
        // A fresh manager without the keys of the fixture.
        fixture.manager = std::make_unique<APIManager>();
        fixture.manager->setSelectedImageModel(model);
        if (!fixture.manager->openAIKey().isEmpty() || !fixture.manager->falAIKey().isEmpty()) {
            QSKIP("the secret store holds keys");
        }
        const Outcome outcome = generate(fixture);
        QVERIFY(outcome.error());
        QCOMPARE(outcome.error()->message(), "API key is missing. Please add it in Settings.");
        QCOMPARE(fixture.fake->requestCount(), 0);
    }

    void refusesAPromptThatCannotBeWritten()
    {
        ProviderFixture fixture(QStringLiteral("DALL-E"));
        const QString broken = QStringLiteral("fox ") + QChar(0xD800);
        const Outcome outcome = generate(fixture, broken);
        QVERIFY(outcome.error());
        QCOMPARE(outcome.error()->message(), "Failed to prepare the request data.");
        QCOMPARE(fixture.fake->requestCount(), 0);
    }

    // A caller that goes away before the answer hears nothing, and no file is left behind.
    void staysSilentForAGoneCaller()
    {
        ProviderFixture fixture(QStringLiteral("black-forest-labs/FLUX.1-schnell-Free"));
        ScriptedReply slow = ScriptedReply::json(togetherAnswer(test::picture("PNG")));
        slow.pieces.first().pauseBefore = 200ms;
        fixture.fake->on("POST", imagesPath, slow);
        auto context = std::make_unique<QObject>();
        int calls = 0;
        fixture.manager->generateImage(QStringLiteral("p"), context.get(), [&calls](const ImageResult &) { ++calls; });
        QTRY_COMPARE(fixture.fake->requestCount(), 1);
        context.reset();
        // Once the client holds no call, nothing is left that could call back or write a file.
        QTRY_COMPARE(fixture.manager->httpClient().activeCallCount(), 0);
        QCOMPARE(calls, 0);
        QVERIFY(QDir(fixture.tempPath()).isEmpty());
    }

    void codecRefusesWhatIsNoPicture_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("text") << QByteArray("hello world");
        QTest::newRow("PNG signature only") << QByteArray("\x89PNG\r\n\x1a\n", 8);
        // A valid header that claims 60000 × 60000 pixels.
        QByteArray huge = test::picture("PNG", 4, 4);
        huge.replace(16, 8, QByteArray::fromHex("0000ea600000ea60"));
        QTest::newRow("claims a huge size") << huge;
        // A BMP header (no checksum to get wrong) that claims 60000 × 60000 pixels and
        // carries none of them: refused before anything is allocated.
        QByteArray bmp("BM", 2);
        const auto le32 = [&bmp](quint32 value) {
            for (int shift = 0; shift < 32; shift += 8) {
                bmp.append(char((value >> shift) & 0xff));
            }
        };
        le32(54 + 16);
        le32(0);
        le32(54);
        le32(40);
        le32(60000);
        le32(60000);
        bmp.append("\x01\x00\x18\x00", 4); // one plane, 24 bits
        le32(0);
        le32(0);
        le32(2835);
        le32(2835);
        le32(0);
        le32(0);
        bmp.append(QByteArray(16, '\x7f'));
        QTest::newRow("BMP claims a huge size") << bmp;
    }

    void codecRefusesWhatIsNoPicture()
    {
        QFETCH(QByteArray, bytes);
        QVERIFY(!ImageCodec::decode(bytes));
        QVERIFY(ImageCodec::toPng(bytes).isEmpty());
    }

    // Pixels survive a PNG round trip for every channel count; an odd width catches rows
    // read or written with the line padding of the decoder's own buffers.
    void codecRoundTripsPixels_data()
    {
        QTest::addColumn<int>("channels");
        QTest::addColumn<int>("decodedChannels");
        QTest::newRow("grey") << 1 << 1;
        QTest::newRow("grey and alpha") << 2 << 4;
        QTest::newRow("RGB") << 3 << 3;
        QTest::newRow("RGBA") << 4 << 4;
    }

    void codecRoundTripsPixels()
    {
        QFETCH(int, channels);
        QFETCH(int, decodedChannels);
        const int width = 7;
        const int height = 5;
        Bitmap bitmap { width, height, channels, QByteArray(qsizetype(width) * height * channels, '\0') };
        for (qsizetype i = 0; i < bitmap.pixels.size(); ++i) {
            bitmap.pixels[i] = char((i * 37 + 11) % 256);
        }
        const QByteArray png = ImageCodec::encodePng(bitmap);
        QVERIFY(ImageCodec::isPng(png));
        const std::optional<Bitmap> decoded = ImageCodec::decode(png);
        QVERIFY(decoded);
        QCOMPARE(QSize(decoded->width, decoded->height), QSize(width, height));
        QCOMPARE(decoded->channels, decodedChannels);
        QCOMPARE(decoded->pixels.size(), qsizetype(width) * height * decodedChannels);
        for (qsizetype pixel = 0; pixel < qsizetype(width) * height; ++pixel) {
            for (int c = 0; c < decodedChannels; ++c) {
                // Grey and alpha comes back as RGBA with the grey in red, green and blue.
                const int source = channels == 2 ? (c < 3 ? 0 : 1) : c;
                QCOMPARE(quint8(decoded->pixels.at(pixel * decodedChannels + c)),
                    quint8(bitmap.pixels.at(pixel * channels + source)));
            }
        }
    }

    void codecRefusesAMalformedBitmap()
    {
        QVERIFY(ImageCodec::encodePng(Bitmap { 4, 4, 3, QByteArray(4 * 4 * 3 - 1, '\0') }).isEmpty());
        QVERIFY(ImageCodec::encodePng(Bitmap { 4, 4, 5, QByteArray(4 * 4 * 5, '\0') }).isEmpty());
        QVERIFY(ImageCodec::encodePng(Bitmap { 0, 4, 3, {} }).isEmpty());
    }
};

ZENTRIK_TEST(TestImageGeneration)

#include "tst_imagegeneration.moc"
