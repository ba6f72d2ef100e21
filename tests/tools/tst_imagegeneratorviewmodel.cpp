#include "model/imagecodec.h"
#include "support/picture.h"
#include "support/providerfixture.h"
#include "support/storedhistory.h"
#include "support/testregistry.h"
#include "tools/imagegeneratorviewmodel.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QtTest>

using namespace zentrik;
using test::ProviderFixture;
using namespace std::chrono_literals;
using test::ScriptedReply;

namespace {

const QByteArray imagesPath = "/v1/images/generations";

ScriptedReply pictureReply(const QByteArray &bytes, const QByteArray &type = "image/png", int status = 200)
{
    ScriptedReply reply = ScriptedReply::json(bytes, status);
    reply.contentType = type;
    return reply;
}

// OpenAI answers with an address on the fake itself, where the picture waits.
void scriptOpenAI(ProviderFixture &fixture, const QString &address)
{
    fixture.fake->on("POST", imagesPath,
        ScriptedReply::json(QJsonDocument(QJsonObject {
            { QStringLiteral("data"), QJsonArray { QJsonObject { { QStringLiteral("url"), address } } } } })));
}

QString onFake(const ProviderFixture &fixture, const char *path)
{
    return fixture.fake->baseUrl().toString() + QLatin1String(path);
}

} // namespace

// The image studio's state against the real image operation and a fake provider: what
// Generate sends and when it may, the progress, the picture, the three error texts, Save
// and the examples.
class ImageGeneratorViewModelTest : public QObject
{
    Q_OBJECT

    static bool idle(const ImageGeneratorViewModel &vm)
    {
        return QTest::qWaitFor([&vm] { return !vm.isGenerating(); }, 10000);
    }

private Q_SLOTS:
    // The smallest size on the screen still asks DALL-E for its square frame, and the
    // picture fetched from the answer's address is shown at the size it has.
    void keepsTheSizeChoiceOutOfTheRequest()
    {
        ProviderFixture fixture(QStringLiteral("DALL-E"));
        scriptOpenAI(fixture, onFake(fixture, "/images/dalle.png"));
        fixture.fake->on("GET", "/images/dalle.png", pictureReply(test::picture("PNG", 1024, 1024)));
        ImageGeneratorViewModel vm;
        vm.setApiManager(fixture.manager.get());
        vm.setSelectedSize(ImageGeneratorViewModel::ImageSize::small);
        vm.setPrompt(QStringLiteral("A lighthouse at dawn"));
        vm.generate();
        QVERIFY(vm.isGenerating());
        QVERIFY(idle(vm));

        QVERIFY2(vm.errorMessage().isEmpty(), qPrintable(vm.errorMessage()));
        const auto requests = fixture.fake->requests();
        QCOMPARE(requests.size(), 2);
        QCOMPARE(requests.at(0).json().object().value(QLatin1String("size")).toString(), "1024x1024");
        QCOMPARE(requests.at(0).json().object().value(QLatin1String("prompt")).toString(), "A lighthouse at dawn");
        QCOMPARE(requests.at(1).method, "GET");
        QCOMPARE(requests.at(1).path, "/images/dalle.png");
        QVERIFY(vm.hasImage());
        QCOMPARE(vm.imageSize(), QSize(1024, 1024));
        QVERIFY(vm.imageUrl().isLocalFile());
        QVERIFY(QFileInfo::exists(vm.imageUrl().toLocalFile()));
        QCOMPARE(vm.selectedSize(), ImageGeneratorViewModel::ImageSize::small);
    }

    // Each picture is saved with its prompt and model; the history keeps its own copy, which
    // a stored run shows again.
    void keepsEachRunInTheHistory()
    {
        ProviderFixture fixture(QStringLiteral("DALL-E"));
        scriptOpenAI(fixture, onFake(fixture, "/images/dalle.png"));
        fixture.fake->on("GET", "/images/dalle.png", pictureReply(test::picture("PNG", 64, 48)));
        test::StoredHistory history;
        ImageGeneratorViewModel vm;
        vm.setApiManager(fixture.manager.get());
        vm.setHistory(history.service.get());
        vm.setPrompt(QStringLiteral("A lighthouse at dawn"));
        vm.generate();
        QVERIFY(idle(vm));
        const QList<ConversationRecord> runs = history.conversations();
        QCOMPARE(runs.size(), 1);
        QCOMPARE(runs.first().image->model, QStringLiteral("DALL-E"));
        QCOMPARE(runs.first().messages.first().text, QStringLiteral("A lighthouse at dawn"));
        QFile kept(runs.first().image->picturePath);
        QVERIFY(kept.open(QIODevice::ReadOnly));
        QCOMPARE(kept.readAll(), vm.imagePng());
        QCOMPARE(kept.permissions() & (QFile::ReadOther | QFile::ReadGroup), QFile::Permissions());

        ImageGeneratorViewModel reopened;
        reopened.setApiManager(fixture.manager.get());
        reopened.setHistory(history.service.get());
        QSignalSpy opened(&reopened, &ImageGeneratorViewModel::runOpened);
        reopened.openRun(runs.first().uid);
        QVERIFY(opened.wait());
        QVERIFY(idle(reopened));
        QCOMPARE(reopened.prompt(), QStringLiteral("A lighthouse at dawn"));
        QVERIFY2(reopened.errorMessage().isEmpty(), qPrintable(reopened.errorMessage()));
        QCOMPARE(reopened.imageSize(), QSize(64, 48));
        QCOMPARE(history.conversations().size(), 1); // showing it again saves nothing new
    }

    void enablesGenerateOnlyWithAPromptAndNothingUnderWay_data()
    {
        QTest::addColumn<QString>("prompt");
        QTest::addColumn<bool>("enabled");
        QTest::newRow("empty") << "" << false;
        QTest::newRow("blanks") << " \n\t " << false;
        QTest::newRow("a word") << "cat" << true;
    }

    void enablesGenerateOnlyWithAPromptAndNothingUnderWay()
    {
        QFETCH(QString, prompt);
        QFETCH(bool, enabled);
        ProviderFixture fixture(QStringLiteral("DALL-E"));
        ScriptedReply slow = ScriptedReply::json(R"({"data":[]})");
        slow.pieces.first().pauseBefore = 150ms;
        fixture.fake->on("POST", imagesPath, slow);
        ImageGeneratorViewModel vm;
        QVERIFY(!vm.canGenerate()); // no model access yet
        vm.setApiManager(fixture.manager.get());
        QSignalSpy canGenerate(&vm, &ImageGeneratorViewModel::canGenerateChanged);
        vm.setPrompt(prompt);
        QCOMPARE(vm.canGenerate(), enabled);
        QCOMPARE(canGenerate.count(), enabled ? 1 : 0);
        vm.generate();
        vm.generate();
        QCOMPARE(vm.isGenerating(), enabled);
        QVERIFY(!vm.canGenerate());
        QVERIFY(idle(vm));
        QCOMPARE(vm.canGenerate(), enabled);
        QCOMPARE(fixture.fake->requestCount(), enabled ? 1 : 0);
    }

    void showsTheQueuePositionWhileFalWorks()
    {
        ProviderFixture fixture(QStringLiteral("fal-ai/fast-sdxl"));
        fixture.manager->setFalPolling(20ms, 10s);
        fixture.fake->on("POST", "/fal-ai/fast-sdxl", ScriptedReply::json(R"({"request_id":"r9"})"));
        for (const char *status : { R"({"status":"IN_QUEUE","queue_position":3,"response_url":"u"})",
                 R"({"status":"IN_QUEUE","queue_position":0,"response_url":"u"})", R"({"status":"IN_PROGRESS"})",
                 R"({"status":"COMPLETED","response_url":"u"})" }) {
            fixture.fake->enqueue("GET", "/fal-ai/fast-sdxl/requests/r9/status", ScriptedReply::json(status));
        }
        fixture.fake->on("GET", "/fal-ai/fast-sdxl/requests/r9",
            ScriptedReply::json(QJsonDocument(QJsonObject { { QStringLiteral("images"),
                QJsonArray { QJsonObject { { QStringLiteral("url"), onFake(fixture, "/files/out.jpg") } } } } })));
        fixture.fake->on("GET", "/files/out.jpg", pictureReply(test::picture("JPG", 96, 64), "image/jpeg"));

        ImageGeneratorViewModel vm;
        vm.setApiManager(fixture.manager.get());
        vm.setPrompt(QStringLiteral("A bowl of ramen"));
        QStringList progress;
        QList<int> positions;
        connect(&vm, &ImageGeneratorViewModel::progressChanged, this, [&] {
            progress.append(vm.progressText());
            positions.append(vm.queuePosition());
        });
        vm.generate();
        QVERIFY(idle(vm));

        QVERIFY2(vm.errorMessage().isEmpty(), qPrintable(vm.errorMessage()));
        QCOMPARE(progress,
            QStringList({ "Generating image…", "In queue (position 3)", "In queue (position 0)", "Generating image…",
                "Loading image…", "" }));
        QCOMPARE(positions, QList<int>({ -1, 3, 0, -1, -1, -1 }));
        QVERIFY(vm.hasImage());
        QCOMPARE(vm.imageSize(), QSize(96, 64));
        // A JPEG from the provider is kept as PNG, ready for Save.
        QVERIFY(ImageCodec::isPng(vm.imagePng()));
        QCOMPARE(fixture.fake->lastRequest().path, "/files/out.jpg");
    }

    // The Together answer is a local file; it is shown from there like any other picture,
    // without a request to the network.
    void showsTheTogetherFileLikeARemotePicture()
    {
        ProviderFixture fixture(QStringLiteral("black-forest-labs/FLUX.1-schnell-Free"));
        fixture.fake->on("POST", imagesPath,
            ScriptedReply::json("{\"data\":[{\"b64_json\":\"" + test::picture("JPG", 120, 90).toBase64() + "\"}]}"));
        ImageGeneratorViewModel vm;
        vm.setApiManager(fixture.manager.get());
        vm.setPrompt(QStringLiteral("Foggy harbour"));
        QSignalSpy imageChanged(&vm, &ImageGeneratorViewModel::imageChanged);
        vm.generate();
        QVERIFY(idle(vm));
        QVERIFY2(vm.errorMessage().isEmpty(), qPrintable(vm.errorMessage()));
        QCOMPARE(imageChanged.count(), 1);
        QCOMPARE(fixture.fake->requestCount(), 1);
        QCOMPARE(QFileInfo(vm.imageUrl().toLocalFile()).absolutePath(), QDir(fixture.tempPath()).absolutePath());
        QCOMPARE(vm.imageSize(), QSize(120, 90));
    }

    // A picture address that serves no picture is the screen's own error; the provider's
    // answers are read by the image operation and checked there.
    void showsWhyThereIsNoPicture_data()
    {
        QTest::addColumn<QByteArray>("served");
        QTest::addColumn<int>("status");
        QTest::newRow("bytes that are no picture") << QByteArray("<html>oops</html>") << 200;
        QTest::newRow("missing picture") << QByteArray("Not Found") << 404;
    }

    void showsWhyThereIsNoPicture()
    {
        QFETCH(QByteArray, served);
        QFETCH(int, status);
        ProviderFixture fixture(QStringLiteral("DALL-E"));
        scriptOpenAI(fixture, onFake(fixture, "/pic.png"));
        fixture.fake->on("GET", "/pic.png", pictureReply(served, "text/html", status));
        ImageGeneratorViewModel vm;
        vm.setApiManager(fixture.manager.get());
        vm.setPrompt(QStringLiteral("Keep me"));
        vm.generate();
        QVERIFY(idle(vm));
        QCOMPARE(vm.errorMessage(), "Failed to load image");
        QVERIFY(!vm.hasImage());
        QVERIFY(vm.progressText().isEmpty());
        QCOMPARE(vm.prompt(), "Keep me");
        QVERIFY(vm.canGenerate());
    }

    // A failed second generation leaves the first picture on screen; a new start clears
    // the old error.
    void keepsThePictureAfterAFailure()
    {
        ProviderFixture fixture(QStringLiteral("DALL-E"));
        scriptOpenAI(fixture, onFake(fixture, "/one.png"));
        fixture.fake->on("GET", "/one.png", pictureReply(test::picture("PNG")));
        ImageGeneratorViewModel vm;
        vm.setApiManager(fixture.manager.get());
        vm.setPrompt(QStringLiteral("first"));
        vm.generate();
        QVERIFY(idle(vm));
        QVERIFY(vm.hasImage());
        const QUrl first = vm.imageUrl();

        fixture.fake->on("POST", imagesPath, ScriptedReply::json(R"({"data":[{"url":5}]})"));
        vm.generate();
        QVERIFY(idle(vm));
        QCOMPARE(vm.errorMessage(), "Invalid response received from the server.");
        QCOMPARE(vm.imageUrl(), first);
        QVERIFY(vm.hasImage());

        scriptOpenAI(fixture, onFake(fixture, "/one.png"));
        QSignalSpy errors(&vm, &ImageGeneratorViewModel::errorMessageChanged);
        vm.generate();
        QCOMPARE(errors.count(), 1);
        QVERIFY(vm.errorMessage().isEmpty());
        QVERIFY(idle(vm));
        QVERIFY(vm.imageUrl() != first);
    }

    void savesThePictureAsPng()
    {
        ProviderFixture fixture(QStringLiteral("DALL-E"));
        scriptOpenAI(fixture, onFake(fixture, "/p.jpg"));
        fixture.fake->on("GET", "/p.jpg", pictureReply(test::picture("JPG", 40, 30), "image/jpeg"));
        ImageGeneratorViewModel vm;
        QVERIFY(!vm.save(QUrl::fromLocalFile(fixture.tempPath() + QStringLiteral("/nothing.png"))));
        vm.setApiManager(fixture.manager.get());
        vm.setPrompt(QStringLiteral("p"));
        vm.generate();
        QVERIFY(idle(vm));
        QVERIFY(vm.hasImage());

        const QString target = fixture.tempPath() + QStringLiteral("/out/") + vm.suggestedFileName();
        QSignalSpy saved(&vm, &ImageGeneratorViewModel::saved);
        QVERIFY(!vm.save(QUrl::fromLocalFile(target))); // the folder does not exist
        QVERIFY2(vm.errorMessage().startsWith(QLatin1String("Failed to save image: ")), qPrintable(vm.errorMessage()));
        QVERIFY(vm.errorMessage().size() > QStringLiteral("Failed to save image: ").size());
        QCOMPARE(saved.count(), 0);

        QVERIFY(QDir(fixture.tempPath()).mkdir(QStringLiteral("out")));
        QVERIFY(vm.save(QUrl::fromLocalFile(target)));
        QVERIFY(vm.errorMessage().isEmpty());
        QCOMPARE(saved.count(), 1);
        QFile file(target);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        QVERIFY(ImageCodec::isPng(bytes));
        const std::optional<Bitmap> written = ImageCodec::decode(bytes);
        QVERIFY(written);
        QCOMPARE(QSize(written->width, written->height), QSize(40, 30));
    }

    // The window test copies an example by its button; an index the list does not hold
    // copies nothing.
    void copiesOnlyAnExampleThatExists()
    {
        ImageGeneratorViewModel vm;
        QSignalSpy copied(&vm, &ImageGeneratorViewModel::copyRequested);
        vm.copyExample(int(vm.examplePrompts().size()));
        vm.copyExample(-1);
        QCOMPARE(copied.count(), 0);
        QVERIFY(vm.prompt().isEmpty());
    }

    // The screen may close while a picture is on its way.
    // Cancel frees the screen at once; the abandoned answer, arriving later, changes nothing,
    // and the next generation shows its own picture.
    void cancelDropsTheAnswerUnderWay()
    {
        ProviderFixture fixture(QStringLiteral("DALL-E"));
        scriptOpenAI(fixture, onFake(fixture, "/late.png"));
        ScriptedReply late = pictureReply(test::picture("PNG", 64, 64));
        late.pieces.first().pauseBefore = 300ms;
        fixture.fake->on("GET", "/late.png", late);
        ImageGeneratorViewModel vm;
        vm.setApiManager(fixture.manager.get());
        QCOMPARE(vm.modelName(), QStringLiteral("DALL-E"));
        vm.setPrompt(QStringLiteral("p"));
        vm.generate();
        QTRY_COMPARE(fixture.fake->requestCount(), 2);
        vm.cancel();
        QVERIFY(!vm.isGenerating());
        QVERIFY(vm.canGenerate());
        QVERIFY(vm.progressText().isEmpty());
        // Once the client holds no call, the abandoned answer can no longer arrive.
        QTRY_COMPARE(fixture.manager->httpClient().activeCallCount(), 0);
        QVERIFY(!vm.hasImage());
        QVERIFY(!vm.isGenerating());

        scriptOpenAI(fixture, onFake(fixture, "/next.png"));
        fixture.fake->on("GET", "/next.png", pictureReply(test::picture("PNG", 32, 16)));
        vm.generate();
        QVERIFY(idle(vm));
        QCOMPARE(vm.imageSize(), QSize(32, 16));
    }

    void survivesClosingMidGeneration()
    {
        ProviderFixture fixture(QStringLiteral("DALL-E"));
        scriptOpenAI(fixture, onFake(fixture, "/late.png"));
        ScriptedReply late = pictureReply(test::picture("PNG"));
        late.pieces.first().pauseBefore = 150ms;
        fixture.fake->on("GET", "/late.png", late);
        auto vm = std::make_unique<ImageGeneratorViewModel>();
        vm->setApiManager(fixture.manager.get());
        vm->setPrompt(QStringLiteral("p"));
        vm->generate();
        QTRY_COMPARE(fixture.fake->requestCount(), 2);
        vm.reset();
        QTRY_COMPARE(fixture.manager->httpClient().activeCallCount(), 0);
    }
};

ZENTRIK_TEST(ImageGeneratorViewModelTest)

#include "tst_imagegeneratorviewmodel.moc"
