#include <QtTest>

#include <QTemporaryDir>

#include "model/apimanager.h"
#include "support/closingserver.h"
#include "support/testregistry.h"

using namespace zentrik;

namespace {

const QString lostConnection
    = QStringLiteral("The network connection was lost. Please check your internet connection and try again.");

// Every provider address at a server that takes each request and closes without answering.
class ClosingProviders
{
public:
    ClosingProviders()
    {
        qputenv("ZENTRIK_CONFIG_DIR", m_config.path().toUtf8());
        qputenv("TMPDIR", m_config.path().toUtf8());
        for (const char *variable : addressVariables) {
            qputenv(variable, server.baseUrl().toString().toUtf8());
        }
        manager = std::make_unique<APIManager>();
        manager->overrideUserKeys(
            QStringLiteral("sk-openai-key"), QStringLiteral("sk-ant-key"), QStringLiteral("fal-id:fal-secret"));
        manager->overrideTogetherKey(QStringLiteral("together-key"));
    }

    ~ClosingProviders()
    {
        manager.reset();
        for (const char *variable : addressVariables) {
            qunsetenv(variable);
        }
        qunsetenv("ZENTRIK_CONFIG_DIR");
        qunsetenv("TMPDIR");
    }

    ClosingProviders(const ClosingProviders &) = delete;
    ClosingProviders &operator=(const ClosingProviders &) = delete;

    [[nodiscard]] QString path(const QString &name) const { return m_config.filePath(name); }

    static constexpr const char *addressVariables[] = { "ZENTRIK_OPENAI_BASE_URL", "ZENTRIK_ANTHROPIC_BASE_URL",
        "ZENTRIK_OPENROUTER_BASE_URL", "ZENTRIK_TOGETHER_BASE_URL", "ZENTRIK_FAL_QUEUE_URL", "ZENTRIK_FAL_REST_URL" };

private:
    QTemporaryDir m_config;

public:
    test::ClosingServer server;
    std::unique_ptr<APIManager> manager;
};

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
        QTest::newRow("chat, OpenAI") << "chat"
                                      << "gpt-4o-mini";
        QTest::newRow("chat, Anthropic") << "chat"
                                         << "claude-3-haiku-20240307";
        QTest::newRow("streamed chat, OpenAI") << "stream"
                                               << "gpt-4o-mini";
        QTest::newRow("streamed chat, Anthropic") << "stream"
                                                  << "claude-3-haiku-20240307";
        QTest::newRow("transcription") << "transcribe" << QString();
        QTest::newRow("DALL-E") << "image"
                                << "DALL-E";
        QTest::newRow("Together") << "image"
                                  << "black-forest-labs/FLUX.1-schnell-Free";
        QTest::newRow("fal submit") << "image"
                                    << "fal-ai/flux/schnell";
    }

    void everyPaidRequestArrivesOnce()
    {
        QFETCH(QString, operation);
        QFETCH(QString, model);
        ClosingProviders providers;
        APIManager &manager = *providers.manager;
        std::optional<QString> error;
        int completions = 0;
        const auto textDone = [&](const TextResult &result) {
            ++completions;
            error = std::holds_alternative<APIError>(result) ? std::get<APIError>(result).message() : QString();
        };
        if (operation == QLatin1String("chat")) {
            manager.setSelectedTextModel(model);
            manager.generateText(QStringLiteral("a prompt"), this, textDone);
        } else if (operation == QLatin1String("stream")) {
            manager.setSelectedTextModel(model);
            manager.streamText(
                QStringLiteral("a prompt"), this, [](const QString &) {},
                [&](const std::optional<APIError> &result) {
                    ++completions;
                    error = result ? result->message() : QString();
                });
        } else if (operation == QLatin1String("transcribe")) {
            QFile audio(providers.path(QStringLiteral("note.m4a")));
            QVERIFY(audio.open(QIODevice::WriteOnly) && audio.write(QByteArray(4096, 'a')) == 4096);
            audio.close();
            manager.transcribe(audio.fileName(), this, textDone);
        } else {
            manager.setSelectedImageModel(model);
            manager.generateImage(QStringLiteral("a fox"), this, [&](const ImageResult &result) {
                ++completions;
                error = std::holds_alternative<ImageError>(result) ? std::get<ImageError>(result).message() : QString();
            });
        }
        QTRY_COMPARE_WITH_TIMEOUT(completions, 1, 10000);
        QTest::qWait(150); // a second send, or a second completion, would have come by now
        QCOMPARE(completions, 1);
        QCOMPARE(providers.server.requests().size(), 1);
        QCOMPARE(error.value_or(QString()), lostConnection);
    }
};

ZENTRIK_TEST(TestSentOnce)
#include "tst_sentonce.moc"
