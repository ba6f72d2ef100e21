#include <QtTest>

#include <QTcpServer>

#include "support/localmodelserver.h"
#include "support/providerfixture.h"
#include "support/replies.h"
#include "support/testregistry.h"

using namespace zentrik;
using test::LocalModelServer;
using test::ProviderFixture;
using test::ScriptedReply;

namespace {

QString add(APIManager &manager, const QString &name, const QString &url, const QString &key = {})
{
    std::optional<QString> error;
    manager.customProviders().add(name, url, key, nullptr, [&error](const QString &e) { error = e; });
    [&] { QTRY_VERIFY_WITH_TIMEOUT(error.has_value(), 5000); }();
    return error.value_or(QStringLiteral("no answer"));
}

std::variant<QStringList, QString> refresh(APIManager &manager, const QString &name)
{
    std::optional<std::variant<QStringList, QString>> outcome;
    manager.customProviders().refreshModels(name, nullptr, [&outcome](const auto &result) { outcome = result; });
    [&] { QTRY_VERIFY_WITH_TIMEOUT(outcome.has_value(), 5000); }();
    return outcome.value_or(QStringLiteral("no answer"));
}

int closedPort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort();
}

struct Streamed
{
    QStringList pieces;
    int completions = 0;
    std::optional<APIError> error;
};

} // namespace

// Custom OpenAI-compatible providers end to end, against a fake that answers like Ollama's
// and llama.cpp's /v1 endpoints.
class CustomProvidersTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<ProviderFixture> m_fixture;

    APIManager &manager() { return *m_fixture->manager; }
    QString localUrl() const { return m_fixture->fake->baseUrl().toString() + QStringLiteral("/v1"); }

    Streamed stream(const QString &prompt = QStringLiteral("Hi"))
    {
        Streamed result;
        manager().streamText(
            prompt, this, [&result](const QString &piece) { result.pieces.append(piece); },
            [&result](const std::optional<APIError> &error) {
                ++result.completions;
                result.error = error;
            });
        [&] { QTRY_COMPARE_WITH_TIMEOUT(result.completions, 1, 10000); }();
        return result;
    }

private Q_SLOTS:
    void init() { m_fixture = std::make_unique<ProviderFixture>(); }
    void cleanup() { m_fixture.reset(); }

    void addsAProviderAndListsItsModels_data()
    {
        QTest::addColumn<int>("server");
        QTest::addColumn<QString>("key");
        QTest::newRow("Ollama, no key") << int(LocalModelServer::ollama) << QString();
        QTest::newRow("llama.cpp, with a key") << int(LocalModelServer::llamaCpp) << "sk-local-secret-1";
    }

    void addsAProviderAndListsItsModels()
    {
        QFETCH(int, server);
        QFETCH(QString, key);
        const auto kind = LocalModelServer(server);
        test::serveLikeLocalModelServer(*m_fixture->fake, kind);
        QCOMPARE(add(manager(), "Local", localUrl() + "/", key), QString());
        const auto models = refresh(manager(), "local");
        QCOMPARE(std::get<QStringList>(models), test::localServerModels(kind));
        QCOMPARE(m_fixture->fake->lastRequest().path, QByteArray("/v1/models"));
        QCOMPARE(m_fixture->fake->lastRequest().hasHeader("Authorization"), !key.isEmpty());

        QCOMPARE(manager().customProviders().remove("LOCAL"), QString());
        QVERIFY(manager().customProviders().list().isEmpty());
    }

    void refusesWhatCannotBeAProvider_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("url");
        QTest::addColumn<QString>("error");
        QTest::newRow("taken, in another case") << "LOCAL"
                                                << "http://127.0.0.1:1/v1"
                                                << "There is already a provider named \"Local\".";
        QTest::newRow("slash in the name") << "a/b"
                                           << "http://127.0.0.1:1/v1"
                                           << "A provider's name cannot contain \"/\" or control characters.";
        QTest::newRow("built-in name") << "openai"
                                       << "http://127.0.0.1:1/v1"
                                       << "\"openai\" is the name of a built-in provider; choose another.";
        QTest::newRow("not http") << "Other"
                                  << "ftp://127.0.0.1/v1"
                                  << "\"ftp://127.0.0.1/v1\" is not an http:// or https:// address, such as "
                                     "http://127.0.0.1:11434/v1.";
        QTest::newRow("key in the address") << "Other"
                                            << "https://user:sk@host.example/v1"
                                            << "Give the provider's key on its own, not in the address.";
    }

    void refusesWhatCannotBeAProvider()
    {
        QFETCH(QString, name);
        QFETCH(QString, url);
        QFETCH(QString, error);
        QCOMPARE(add(manager(), "Local", localUrl()), QString());
        QCOMPARE(add(manager(), name, url), error);
        QCOMPARE(manager().customProviders().list().size(), 1);
    }

    // The one check every tool runs, with custom providers among the catalogues; the
    // messages are those of the catalogue's models, in the same order.
    void checksCustomModelsLikeTheCatalogue_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<bool>("keyRead");
        QTest::addColumn<QString>("message");
        QTest::newRow("listed, no key needed") << "custom:Local/llama3.2:latest" << false << "";
        QTest::newRow("typed by hand") << "custom:local/typed-model" << false << "";
        QTest::newRow("provider gone") << "custom:Gone/llama3.2:latest" << false
                                       << "Invalid model selected. Please choose a valid model in Settings.";
        QTest::newRow("model not served") << "custom:Local/gpt-4o-mini" << false
                                          << "Unsupported model selected. Please choose a valid model in Settings.";
        QTest::newRow("key kept but not read")
            << "custom:Keyed/llama3.2:latest" << false << "Keyed API key is missing. Please add it in Settings.";
        QTest::newRow("key read") << "custom:Keyed/llama3.2:latest" << true << "";
    }

    void checksCustomModelsLikeTheCatalogue()
    {
        QFETCH(QString, model);
        QFETCH(bool, keyRead);
        QFETCH(QString, message);
        CustomProviders &providers = manager().customProviders();
        QCOMPARE(add(manager(), "Local", localUrl()), QString());
        QCOMPARE(add(manager(), "Keyed", localUrl(), "sk-keyed-12345"), QString());
        for (const char *name : { "Local", "Keyed" }) {
            QCOMPARE(providers.setListedModels(name, { "llama3.2:latest" }), QString());
        }
        QCOMPARE(providers.addModel("Local", "typed-model"), QString());
        if (!keyRead) {
            providers.setKey("Keyed", QString());
        }
        QCOMPARE(preflightMessage(model, QString(), QString(), &providers).value_or(QString()), message);
        QVERIFY(providers.remove("Keyed").isEmpty());
    }

    // Streamed and whole replies through the OpenAI-compatible client bound to the
    // provider's address, with the key header only when there is a key.
    void repliesThroughTheProvider_data()
    {
        QTest::addColumn<QString>("key");
        QTest::newRow("no key") << QString();
        QTest::newRow("key") << "sk-hosted-0123456";
    }

    void repliesThroughTheProvider()
    {
        QFETCH(QString, key);
        test::serveLikeLocalModelServer(*m_fixture->fake, LocalModelServer::ollama, "One, two, three.");
        QCOMPARE(add(manager(), "Local", localUrl(), key), QString());
        // Named like a free catalogue model, "/" and ":free" included: the namespace keeps it
        // with its provider.
        const QString own = QStringLiteral("mistralai/mistral-7b-instruct:free");
        QCOMPARE(manager().customProviders().addModel("Local", own), QString());
        manager().setSelectedTextModel("custom:Local/" + own);
        QCOMPARE(routeTextModel(manager().selectedTextModel()), std::optional(TextProvider::custom));
        QVERIFY(!manager().preflightMessage());

        const Streamed streamed = stream("Count");
        QVERIFY(!streamed.error);
        QCOMPARE(streamed.pieces.join(QString()), QStringLiteral("One, two, three."));
        auto request = m_fixture->fake->lastRequest();
        QCOMPARE(request.path, QByteArray("/v1/chat/completions"));
        QCOMPARE(request.json().object().value("model").toString(), own);
        QCOMPARE(request.header("Authorization"), key.isEmpty() ? QByteArray() : "Bearer " + key.toUtf8());

        std::optional<TextResult> whole;
        manager().generateText("Count", this, [&whole](const TextResult &result) { whole = result; });
        QTRY_VERIFY(whole.has_value());
        QCOMPARE(std::get<QString>(*whole), QStringLiteral("One, two, three."));
        request = m_fixture->fake->lastRequest();
        QVERIFY(!request.json().object().contains("stream"));
        QCOMPARE(request.json().object().value("messages").toArray().first().toObject().value("role"), "system");
        QCOMPARE(request.header("Authorization"), key.isEmpty() ? QByteArray() : "Bearer " + key.toUtf8());
    }

    void removingTheProviderEndsItsStreamCleanly()
    {
        QList<QByteArray> slow;
        for (int i = 0; i < 20; ++i) {
            slow.append(test::chunkLine(QStringLiteral("word%1 ").arg(i)));
        }
        m_fixture->fake->on("POST", "/v1/chat/completions", ScriptedReply::sse(slow, std::chrono::milliseconds(150)));
        QCOMPARE(add(manager(), "Local", localUrl()), QString());
        QCOMPARE(manager().customProviders().addModel("Local", "m"), QString());
        manager().setSelectedTextModel("custom:Local/m");

        Streamed result;
        manager().streamText(
            "Go", this, [&result](const QString &piece) { result.pieces.append(piece); },
            [&result](const std::optional<APIError> &error) {
                ++result.completions;
                result.error = error;
            });
        QTRY_VERIFY(!result.pieces.isEmpty());
        QCOMPARE(manager().customProviders().remove("Local"), QString());
        QCOMPARE(result.completions, 1);
        QCOMPARE(result.error->kind(), APIError::unsupportedModel);
        QCOMPARE(result.error->detailsLine(),
            QStringLiteral("\nDetails: The provider Local was removed while it answered."));
        const qsizetype kept = result.pieces.size();
        QTest::qWait(400);
        QCOMPARE(result.pieces.size(), kept);
        QCOMPARE(result.completions, 1);
    }

    // Local servers are found on their ports in the background and only offered.
    void detectsModelServersOnThisComputer()
    {
        test::serveLikeLocalModelServer(*m_fixture->fake, LocalModelServer::llamaCpp);
        LocalServerDetector &detector = *manager().localServers();
        detector.setCandidates(
            { { "Ollama", quint16(closedPort()) }, { "llama.cpp", quint16(m_fixture->fake->port()) } });
        QSignalSpy finished(&detector, &LocalServerDetector::finished);
        detector.detect();
        QVERIFY(detector.detecting());
        QVERIFY(finished.wait(5000));
        QCOMPARE(detector.found().size(), 1);
        QCOMPARE(detector.found().first().name, QStringLiteral("llama.cpp"));
        QCOMPARE(detector.found().first().models, test::localServerModels(LocalModelServer::llamaCpp));
        QCOMPARE(detector.offerList().size(), 1);
        QVERIFY(manager().customProviders().list().isEmpty());

        QSignalSpy used(&detector, &LocalServerDetector::useFinished);
        detector.use(detector.found().first().baseUrl.toString());
        QVERIFY(used.wait(5000));
        QCOMPARE(used.first().first().toString(), QString());
        QCOMPARE(manager().customProviders().list().first().name, QStringLiteral("llama.cpp"));
        QCOMPARE(
            manager().customProviders().list().first().models(), test::localServerModels(LocalModelServer::llamaCpp));
        QVERIFY(detector.offerList().isEmpty());
    }

    void findsNothingQuicklyWhenNothingListens()
    {
        LocalServerDetector &detector = *manager().localServers();
        detector.setCandidates({ { "Ollama", quint16(closedPort()) }, { "LM Studio", quint16(closedPort()) },
            { "llama.cpp", quint16(closedPort()) } });
        QSignalSpy finished(&detector, &LocalServerDetector::finished);
        QElapsedTimer timer;
        timer.start();
        detector.detect();
        QVERIFY(finished.wait(2000));
        QVERIFY2(timer.elapsed() < 300, qPrintable(QString::number(timer.elapsed())));
        QVERIFY(detector.found().isEmpty());
    }

    void transcribesWithTheChosenProvider()
    {
        m_fixture->fake->on("POST", "/v1/audio/transcriptions", ScriptedReply::json(QByteArray(R"({"text":"hi"})")));
        QCOMPARE(add(manager(), "Speech", localUrl()), QString());
        QCOMPARE(manager().customProviders().setListedModels("Speech", { "Systran/faster-whisper-small" }), QString());
        QVERIFY(Preferences().setString(APIManager::transcriptionProviderPreference, "Speech"));
        QTemporaryFile audio;
        QVERIFY(audio.open());
        audio.write("not really m4a");
        audio.close();

        std::optional<TextResult> result;
        manager().transcribe(audio.fileName(), this, [&result](const TextResult &r) { result = r; });
        QTRY_VERIFY(result.has_value());
        QCOMPARE(std::get<QString>(*result), QStringLiteral("hi"));
        const auto request = m_fixture->fake->lastRequest();
        QVERIFY(!request.hasHeader("Authorization"));
        QVERIFY(request.formFields.contains({ "model", "Systran/faster-whisper-small" }));

        // Gone: the recording goes nowhere else, OpenAI included.
        QCOMPARE(manager().customProviders().remove("Speech"), QString());
        result.reset();
        manager().transcribe(audio.fileName(), this, [&result](const TextResult &r) { result = r; });
        QTRY_VERIFY(result.has_value());
        QCOMPARE(std::get<APIError>(*result).kind(), APIError::unsupportedModel);
        QCOMPARE(m_fixture->fake->requestCount(), 1);
    }
};
ZENTRIK_TEST(CustomProvidersTest)

#include "tst_customproviders.moc"
