#include "model/apierror.h"
#include "model/modelcatalog.h"
#include "model/providerrouting.h"
#include "net/transporterror.h"
#include "support/testregistry.h"

#include <QtTest>

using namespace zentrik;

// Catalogue invariants, routing and the pre-flight check: the pure parts of model access.
class CatalogueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Every text model the catalogue offers can be routed and says what it is; the free
    // ones are marked so.
    void everyCatalogueModelIsServed()
    {
        QSet<QString> ids;
        for (const AIModel &model : ModelCatalog::textModels()) {
            QVERIFY2(routeTextModel(model.id).has_value(), qPrintable(model.id));
            QVERIFY(!model.name.isEmpty() && !model.usage.isEmpty());
            ids.insert(model.id);
            if (model.id.endsWith(QStringLiteral(":free"))) {
                QCOMPARE(model.icon, QString::fromUcs4(U"\U0001F193", 1));
                QVERIFY(isCatalogueFreeTextModel(model.id));
            }
        }
        QCOMPARE(ids.size(), ModelCatalog::textModels().size());
        for (const ImageModel &model : ModelCatalog::imageModels()) {
            QCOMPARE(model.features.first(), QStringLiteral("text-to-image"));
        }
    }

    void routesTextModels_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<int>("provider"); // -1: no provider
        QTest::newRow("openai") << QStringLiteral("gpt-4o-mini") << int(TextProvider::openAI);
        QTest::newRow("anthropic") << QStringLiteral("claude-3-haiku-20240307") << int(TextProvider::anthropic);
        QTest::newRow("catalogue free") << QStringLiteral("mistralai/mistral-7b-instruct:free")
                                        << int(TextProvider::openRouter);
        QTest::newRow("unknown free") << QStringLiteral("someone/new-model:free") << int(TextProvider::openRouter);
        QTest::newRow("bare suffix") << QStringLiteral(":free") << int(TextProvider::openRouter);
        QTest::newRow("gpt-4o not in catalogue") << QStringLiteral("gpt-4o") << -1;
        QTest::newRow("case differs") << QStringLiteral("GPT-4o-mini") << -1;
        QTest::newRow("suffix not at end") << QStringLiteral("x:free ") << -1;
        QTest::newRow("empty") << QString() << -1;
    }

    void routesTextModels()
    {
        QFETCH(QString, id);
        QFETCH(int, provider);
        const auto routed = routeTextModel(id);
        QCOMPARE(routed.has_value() ? int(*routed) : -1, provider);
    }

    void routesImageModels_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<int>("provider");
        QTest::newRow("dall-e") << QStringLiteral("DALL-E") << int(ImageProvider::openAI);
        QTest::newRow("together") << QStringLiteral("black-forest-labs/FLUX.1-schnell-Free")
                                  << int(ImageProvider::together);
        QTest::newRow("fal") << QStringLiteral("fal-ai/flux-pro") << int(ImageProvider::fal);
        QTest::newRow("anything else is fal") << QStringLiteral("fal-ai/new-thing") << int(ImageProvider::fal);
    }

    void routesImageModels()
    {
        QFETCH(QString, id);
        QFETCH(int, provider);
        QCOMPARE(int(routeImageModel(id)), provider);
    }

    // The checks run in a fixed order; the first that fails gives the message.
    void preflightMessagesInOrder_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<QString>("openAIKey");
        QTest::addColumn<QString>("claudeKey");
        QTest::addColumn<QString>("message");
        const QString none;
        QTest::newRow("empty selection") << QString() << none << none
                                         << QStringLiteral("Please select a text model in Settings.");
        QTest::newRow("not in catalogue, even if free")
            << QStringLiteral("other/model:free") << none << none
            << QStringLiteral("Invalid model selected. Please choose a valid model in Settings.");
        QTest::newRow("openai without key") << QStringLiteral("gpt-4-turbo") << none << QStringLiteral("c")
                                            << QStringLiteral("OpenAI API key is missing. Please add it in Settings.");
        QTest::newRow("openai with key") << QStringLiteral("gpt-4-turbo") << QStringLiteral("k") << none << none;
        QTest::newRow("claude without key") << QStringLiteral("claude-instant") << QStringLiteral("k") << none
                                            << QStringLiteral("Claude API key is missing. Please add it in Settings.");
        QTest::newRow("claude with key") << QStringLiteral("claude-instant") << none << QStringLiteral("c") << none;
        QTest::newRow("free needs no key") << QStringLiteral("google/gemma-2-9b-it:free") << none << none << none;
        // Every catalogue id passes with its provider's key, whichever tool asks, and names
        // the missing key otherwise; the provider is told here by the id's own shape.
        const QString openAIMissing = QStringLiteral("OpenAI API key is missing. Please add it in Settings.");
        const QString claudeMissing = QStringLiteral("Claude API key is missing. Please add it in Settings.");
        for (const AIModel &entry : ModelCatalog::textModels()) {
            const QByteArray id = entry.id.toUtf8();
            if (entry.id.startsWith(QLatin1String("gpt-"))) {
                QTest::newRow(id + " with its key") << entry.id << QStringLiteral("k") << none << none;
                QTest::newRow(id + " with the other key") << entry.id << none << QStringLiteral("c") << openAIMissing;
            } else if (entry.id.startsWith(QLatin1String("claude-"))) {
                QTest::newRow(id + " with its key") << entry.id << none << QStringLiteral("c") << none;
                QTest::newRow(id + " with the other key") << entry.id << QStringLiteral("k") << none << claudeMissing;
            } else {
                QVERIFY(entry.id.endsWith(QLatin1String(":free")));
                QTest::newRow(id + " without keys") << entry.id << none << none << none;
            }
        }
    }

    void preflightMessagesInOrder()
    {
        QFETCH(QString, model);
        QFETCH(QString, openAIKey);
        QFETCH(QString, claudeKey);
        QFETCH(QString, message);
        QCOMPARE(preflightMessage(model, openAIKey, claudeKey).value_or(QString()), message);
    }

    void detailIsAppendedVerbatim()
    {
        QCOMPARE(APIError(APIError::generalNetworkError).message(), QStringLiteral("A network error occurred: "));
        QCOMPARE(APIError(APIError::jsonParsingFailed, QStringLiteral("x")).message(),
            QStringLiteral("Failed to parse the server response: x"));
        QCOMPARE(APIError(APIError::requestTimedOut).message() + connectionTip(),
            QStringLiteral("The request timed out. Please try again.\n\nTip: Check your internet connection or try "
                           "restarting the app."));
    }

    void providerAddressesFollowEnvironment()
    {
        qputenv("ZENTRIK_ANTHROPIC_BASE_URL", "http://127.0.0.1:8080");
        QCOMPARE(providerUrl(Provider::anthropic, QStringLiteral("/v1/messages")),
            QUrl(QStringLiteral("http://127.0.0.1:8080/v1/messages")));
        qputenv("ZENTRIK_ANTHROPIC_BASE_URL", "not a url");
        QVERIFY(!providerUrl(Provider::anthropic, QStringLiteral("/v1/messages")).isValid());
        qunsetenv("ZENTRIK_ANTHROPIC_BASE_URL");
        QCOMPARE(providerUrl(Provider::anthropic, QStringLiteral("/v1/messages")).host(),
            QStringLiteral("api.anthropic.com"));
        QCOMPARE(providerUrl(Provider::anthropic, QStringLiteral("/v1/messages")).scheme(), QStringLiteral("https"));
    }
};
ZENTRIK_TEST(CatalogueTest)

#include "tst_catalogue.moc"
