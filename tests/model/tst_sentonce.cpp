#include <QtTest>

#include "support/closingserver.h"
#include "support/providerfixture.h"
#include "support/testregistry.h"

using namespace zentrik;

namespace {

const QString lostConnection
    = QStringLiteral("The network connection was lost. Please check your internet connection and try again.");

} // namespace

// Every operation that asks a provider for paid work, against a server that read the
// request and closed the connection: the request arrives exactly once (one job, one
// picture, one bill) and the caller hears of a lost connection.
class TestSentOnce : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyPaidRequestArrivesOnce_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QString>("model");
        const auto row = [](const char *name, const QString &operation, const QString &model) {
            QTest::newRow(name) << operation << model;
        };
        row("chat, OpenAI", "chat", "gpt-4o-mini");
        row("chat, Anthropic", "chat", "claude-3-haiku-20240307");
        row("streamed chat, OpenAI", "stream", "gpt-4o-mini");
        row("streamed chat, Anthropic", "stream", "claude-3-haiku-20240307");
        row("transcription", "transcribe", QString());
        row("DALL-E", "image", "DALL-E");
        row("Together", "image", "black-forest-labs/FLUX.1-schnell-Free");
        row("fal submit", "image", "fal-ai/flux/schnell");
    }

    void everyPaidRequestArrivesOnce()
    {
        QFETCH(QString, operation);
        QFETCH(QString, model);
        // Every provider address at a server that takes each request and closes without answering.
        test::ClosingServer server;
        test::ProviderFixture providers(operation == QLatin1String("image") ? model : QString(), server.baseUrl());
        APIManager &manager = *providers.manager;
        std::optional<QString> error;
        int completions = 0;
        const auto textDone = [&](const TextResult &result) {
            ++completions;
            error = std::holds_alternative<APIError>(result) ? std::get<APIError>(result).message() : QString();
        };
        if (operation == QLatin1String("chat")) {
            providers.use(model);
            manager.generateText(QStringLiteral("a prompt"), this, textDone);
        } else if (operation == QLatin1String("stream")) {
            providers.use(model);
            manager.streamText(
                QStringLiteral("a prompt"), this, [](const QString &) {},
                [&](const std::optional<APIError> &result) {
                    ++completions;
                    error = result ? result->message() : QString();
                });
        } else if (operation == QLatin1String("transcribe")) {
            providers.use(QString());
            QFile audio(providers.tempPath() + QStringLiteral("/note.m4a"));
            QVERIFY(audio.open(QIODevice::WriteOnly) && audio.write(QByteArray(4096, 'a')) == 4096);
            audio.close();
            manager.transcribe(audio.fileName(), this, textDone);
        } else {
            manager.generateImage(QStringLiteral("a fox"), this, [&](const ImageResult &result) {
                ++completions;
                error = std::holds_alternative<ImageError>(result) ? std::get<ImageError>(result).message() : QString();
            });
        }
        QTRY_COMPARE_WITH_TIMEOUT(completions, 1, 10000);
        QTest::qWait(150); // a second send, or a second completion, would have come by now
        QCOMPARE(completions, 1);
        QCOMPARE(server.requests().size(), 1);
        QCOMPARE(error.value_or(QString()), lostConnection);
    }
};

ZENTRIK_TEST(TestSentOnce)
#include "tst_sentonce.moc"
