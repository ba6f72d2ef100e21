#include "app/zentrikapp.h"
#include "support/fakeprovider.h"
#include "support/picture.h"
#include "support/testregistry.h"
#include "tools/imagegeneratorviewmodel.h"
#include "windowharness.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <QtTest>

using namespace zentrik;
using namespace zentrik::test;

namespace {

const QString freeModel = QStringLiteral("black-forest-labs/FLUX.1-schnell-Free");

QByteArray pictureAnswer()
{
    return "{\"data\":[{\"index\":0,\"b64_json\":\"" + picture("PNG").toBase64() + "\"}]}";
}

} // namespace

// The image studio in the real window: opened from the sidebar, driven by mouse and
// keyboard, generating with the free model against a fake Together service.
class ImageStudioWindowTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<WindowTestEnvironment> m_environment;
    FakeProvider *m_fake = nullptr;

    // Starts the window on the image studio, with the free model selected and a Together key.
    std::unique_ptr<ZentrikApp> openStudio(ImageGeneratorViewModel *&studio)
    {
        auto app = startApp();
        if (!app || !click(findItem(app->window(), QStringLiteral("sidebar:Image Creation Studio")))) {
            return nullptr;
        }
        if (!QTest::qWaitFor(
                [&] { return findItem(app->window(), QStringLiteral("imageGeneratorView")) != nullptr; })) {
            return nullptr;
        }
        studio = qobject_cast<ImageGeneratorViewModel *>(
            findObject(app->window(), QStringLiteral("imageGeneratorViewModel")));
        if (!studio || !studio->apiManager()) {
            return nullptr;
        }
        studio->apiManager()->setSelectedImageModel(freeModel);
        studio->apiManager()->overrideTogetherKey(QStringLiteral("together-test-key"));
        return app;
    }

private Q_SLOTS:
    void init()
    {
        m_environment = std::make_unique<WindowTestEnvironment>();
        m_fake = &m_environment->fake();
    }

    void cleanup()
    {
        m_fake = nullptr;
        m_environment.reset();
    }

    void generatesWithTheFreeModelAndShowsThePicture()
    {
        m_fake->on("POST", "/v1/images/generations", ScriptedReply::json(pictureAnswer()));
        ImageGeneratorViewModel *studio = nullptr;
        const auto app = openStudio(studio);
        QVERIFY(app);
        QQuickWindow *window = app->window();
        QCOMPARE(window->title(), QStringLiteral("Image Creation Studio"));
        for (const QString &text : { QStringLiteral("Enter your prompt:"), QStringLiteral("Select Image Size"),
                 QStringLiteral("Examples You Can Use"), QStringLiteral("256x256") }) {
            QVERIFY2(visibleTexts(window).contains(text), qPrintable(text));
        }

        QQuickItem *generate = findItem(window, QStringLiteral("generateButton"));
        QVERIFY(generate);
        QVERIFY(!generate->isEnabled());
        QVERIFY(click(findItem(window, QStringLiteral("promptField"))));
        typeText(window, QStringLiteral("A red fox"));
        QCOMPARE(studio->prompt(), QStringLiteral("A red fox"));
        QTRY_VERIFY(generate->isEnabled());
        QVERIFY(click(findItem(window, QStringLiteral("size_256x256"))));
        QCOMPARE(studio->selectedSize(), ImageGeneratorViewModel::ImageSize::small);
        QVERIFY(click(generate));

        QQuickItem *image = findItem(window, QStringLiteral("generatedImage"));
        QVERIFY(image);
        // Image.Ready
        QTRY_COMPARE_WITH_TIMEOUT(image->property("status").toInt(), 1, 10000);
        const QUrl source = image->property("source").toUrl();
        QVERIFY(source.isLocalFile());
        QCOMPARE(QFileInfo(source.toLocalFile()).absolutePath(), QDir(m_environment->tempPath()).absolutePath());
        QCOMPARE(image->property("sourceSize").toSize(), QSize(64, 48));
        QVERIFY(image->isVisible() && image->width() > 0);
        QTRY_VERIFY(visibleTexts(window).contains(QStringLiteral("64 × 48 pixels")));
        QVERIFY(findItem(window, QStringLiteral("saveButton"))->isVisible());
        QVERIFY(generate->isEnabled());

        const RecordedRequest request = m_fake->lastRequest();
        QCOMPARE(request.header("Authorization"), "Bearer together-test-key");
        QCOMPARE(request.json().object().value(QLatin1String("model")).toString(), freeModel);
        QCOMPARE(request.json().object().value(QLatin1String("prompt")).toString(), QStringLiteral("A red fox"));
        QCOMPARE(request.json().object().value(QLatin1String("width")).toInt(), 1024);

        // The save dialog offers "Save", not "Open", and Escape leaves without writing anything.
        const QStringList before = QDir(m_environment->tempPath()).entryList(QDir::Files);
        QQuickItem *save = findItem(window, QStringLiteral("saveButton"));
        QVERIFY(click(save));
        QQuickItem *dialog = nullptr;
        QTRY_VERIFY((dialog = openFileDialog(window)) != nullptr);
        QStringList buttons;
        for (QObject *object : allObjects(dialog)) {
            auto *item = qobject_cast<QQuickItem *>(object);
            if (item && item->isVisible() && item->inherits("QQuickAbstractButton")) {
                buttons.append(item->property("text").toString());
            }
        }
        QVERIFY2(buttons.contains(QStringLiteral("Save")), qPrintable(buttons.join(QLatin1Char(','))));
        QVERIFY2(!buttons.contains(QStringLiteral("Open")), qPrintable(buttons.join(QLatin1Char(','))));
        QTest::keyClick(window, Qt::Key_Escape);
        QTRY_VERIFY(openFileDialog(window) == nullptr);
        QCOMPARE(QDir(m_environment->tempPath()).entryList(QDir::Files), before);
    }

    void showsTheErrorAndKeepsThePrompt()
    {
        m_fake->on("POST", "/v1/images/generations", ScriptedReply::json(R"({"data":[]})"));
        ImageGeneratorViewModel *studio = nullptr;
        const auto app = openStudio(studio);
        QVERIFY(app);
        studio->setPrompt(QStringLiteral("A harbour at night"));
        QVERIFY(click(findItem(app->window(), QStringLiteral("generateButton"))));
        QTRY_VERIFY(visibleTexts(app->window()).contains(QStringLiteral("Invalid response received from the server.")));
        QCOMPARE(findItem(app->window(), QStringLiteral("promptField"))->property("text").toString(),
            QStringLiteral("A harbour at night"));
        QVERIFY(!findItem(app->window(), QStringLiteral("saveButton"))->isVisible());
    }

    void copiesAnExampleIntoThePromptField()
    {
        ImageGeneratorViewModel *studio = nullptr;
        const auto app = openStudio(studio);
        QVERIFY(app);
        QQuickWindow *window = app->window();
        QVERIFY(!findItem(window, QStringLiteral("copyExample_Book Cover")));
        QVERIFY(click(findItem(window, QStringLiteral("examplesToggle"))));
        QTRY_VERIFY(findItem(window, QStringLiteral("copyExample_Book Cover")));
        QVERIFY(visibleTexts(window).contains(QStringLiteral("E-commerce Banner")));
        QGuiApplication::clipboard()->clear();
        QQuickItem *copyButton = findItem(window, QStringLiteral("copyExample_Book Cover"));
        QVERIFY(click(copyButton));
        const QString text = findItem(window, QStringLiteral("promptField"))->property("text").toString();
        QVERIFY2(
            text.startsWith(QLatin1String("Design a captivating book cover for a fantasy novel")), qPrintable(text));
        QCOMPARE(QGuiApplication::clipboard()->text(), text);
        // Only the copied example shows the check mark.
        const auto symbol = [](QQuickItem *button) {
            const auto *icon = button ? button->property("contentItem").value<QQuickItem *>() : nullptr;
            return icon ? icon->property("symbol").toString() : QString();
        };
        QTRY_COMPARE(symbol(copyButton), QStringLiteral("checkmark"));
        QCOMPARE(symbol(findItem(window, QStringLiteral("copyExample_Logo"))), QStringLiteral("doc.on.doc"));
    }
};

ZENTRIK_TEST(ImageStudioWindowTest)

#include "tst_imagestudio.moc"
