#include "app/zentrikapp.h"
#include "model/apimanager.h"
#include "settings/secretstore.h"
#include "support/environment.h"
#include "support/localmodelserver.h"
#include "support/testregistry.h"
#include "windowharness.h"

#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QtTest>

using namespace zentrik;
using namespace zentrik::test;

namespace {

APIManager *apiManagerOf(ZentrikApp &app)
{
    return app.engine()->singletonInstance<APIManager *>(qmlTypeId("Zentrik.Model", 1, 0, "APIManager"));
}

QString joinedTexts(QQuickWindow *window)
{
    return visibleTexts(window).join(QLatin1Char('\n'));
}

} // namespace

// Custom providers and local model servers in the real window, driven by mouse and keys
// against a fake server that answers like the local servers people run.
class ProviderScreensTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<WindowTestEnvironment> m_environment;

private Q_SLOTS:
    void init() { m_environment = std::make_unique<WindowTestEnvironment>(); }
    void cleanup() { m_environment.reset(); }

    // Added in Settings, its model chosen in the text model picker under the provider's name,
    // and the next question in Ask Me Anything goes to it, with its key when it has one. A
    // server that lists no models gets one typed by hand.
    void providerAddedInSettingsAnswersInAskMeAnything_data()
    {
        QTest::addColumn<bool>("listsModels");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("model");
        QTest::newRow("listed, no key") << true << QString() << QStringLiteral("qwen2.5:0.5b");
        QTest::newRow("typed, with a key") << false << QStringLiteral("sk-local-1") << QStringLiteral("my-model");
    }

    void providerAddedInSettingsAnswersInAskMeAnything()
    {
        QFETCH(bool, listsModels);
        QFETCH(QString, key);
        QFETCH(QString, model);
        if (!key.isEmpty() && !SecretStore().isAvailable()) {
            QSKIP("No Secret Service on this session bus; scripts/test provides one");
        }
        FakeProvider server;
        serveLikeLocalModelServer(server, LocalModelServer::ollama, QStringLiteral("Hello from the box."));
        if (!listsModels) {
            server.on("GET", "/v1/models", ScriptedReply::json(QByteArray(R"({"object":"list","data":[]})")));
        }
        const auto app = startApp();
        QVERIFY(app);
        QQuickWindow *window = app->window();
        QTest::keyClick(window, Qt::Key_Comma, Qt::ControlModifier);
        QTRY_VERIFY(findItem(window, QStringLiteral("providersSection")));

        QVERIFY(click(findItem(window, QStringLiteral("providerNameField"))));
        typeText(window, QStringLiteral("Box"));
        if (!key.isEmpty()) {
            QVERIFY(click(findItem(window, QStringLiteral("providerKeyField.input"))));
            typeText(window, key);
        }
        QVERIFY(click(findItem(window, QStringLiteral("providerUrlField"))));
        typeText(window, server.baseUrl().toString() + QStringLiteral("/v1"));
        QTest::keyClick(window, Qt::Key_Return);
        QTRY_VERIFY_WITH_TIMEOUT(findItem(window, QStringLiteral("customProvider:Box")), 10000);
        QQuickItem *message = findItem(window, QStringLiteral("providerMessage"));
        QTRY_VERIFY(!message->property("text").toString().startsWith(QStringLiteral("Working")));
        QVERIFY2(message->property("text").toString().startsWith(QStringLiteral("Added Box")),
            qPrintable(message->property("text").toString()));
        QCOMPARE(findItem(window, QStringLiteral("providerNameField"))->property("text").toString(), QString());

        if (!listsModels) {
            QVERIFY(click(findItem(window, QStringLiteral("customProvider:Box.modelInput"))));
            typeText(window, model);
            QTest::keyClick(window, Qt::Key_Return);
            QTRY_VERIFY(joinedTexts(window).contains(QStringLiteral("Added the model my-model to Box.")));
        }
        QVERIFY(
            findItem(window, QStringLiteral("customProvider:Box.models"))->property("text").toString().contains(model));
        // The screenshots: one row in each theme.
        if (!listsModels) {
            QVERIFY(click(findItem(window, QStringLiteral("darkModeSwitch"))));
        }
        const QString theme = listsModels ? QStringLiteral("-light") : QStringLiteral("-dark");
        scrollIntoView(findItem(window, QStringLiteral("providersSection")));
        saveScreenshots(window, QStringLiteral("settings-providers") + theme);

        // The picker lists the provider's models under its name.
        QQuickItem *picker = findItem(window, QStringLiteral("textModelPicker"));
        QVERIFY(click(picker));
        const QString optionName = QStringLiteral("modelOption:custom:Box/") + model;
        QTRY_VERIFY(findItem(window, optionName) && findItem(window, optionName)->isVisible());
        QTRY_VERIFY(findItem(window, QStringLiteral("modelGroup:Box"))->isVisible());
        saveScreenshots(window, QStringLiteral("settings-model-picker") + theme);
        QVERIFY(click(findItem(window, optionName)));
        QTRY_COMPARE(picker->property("currentText").toString(), model);
        // It can transcribe too: the second choice, after OpenAI.
        QQuickItem *transcriber = findItem(window, QStringLiteral("transcriptionProviderPicker"));
        QVERIFY(click(transcriber));
        QTRY_VERIFY(transcriber->property("popup").value<QObject *>()->property("opened").toBool());
        QTest::keyClick(window, Qt::Key_Down);
        QTest::keyClick(window, Qt::Key_Return);
        QTRY_COMPARE(transcriber->property("currentText").toString(), QStringLiteral("Box"));
        QVERIFY(click(findItem(window, QStringLiteral("saveButton"))));
        QTRY_VERIFY(joinedTexts(window).contains(QStringLiteral("Your changes have been saved successfully.")));
        QTest::keyClick(window, Qt::Key_Escape);
        QCOMPARE(apiManagerOf(*app)->selectedTextModel(), QStringLiteral("custom:Box/") + model);
        QCOMPARE(apiManagerOf(*app)->transcriptionProvider(), QStringLiteral("Box"));

        QVERIFY(click(findItem(window, QStringLiteral("sidebar:Ask Me Anything"))));
        QTRY_VERIFY(findItem(window, QStringLiteral("askMeAnythingView")));
        QVERIFY(click(findItem(window, QStringLiteral("chatInputField"))));
        typeText(window, QStringLiteral("Who are you?"));
        QTest::keyClick(window, Qt::Key_Return);
        QTRY_VERIFY_WITH_TIMEOUT(joinedTexts(window).contains(QStringLiteral("Hello from the box.")), 10000);
        const RecordedRequest request = server.lastRequest();
        QCOMPARE(request.path, QByteArray("/v1/chat/completions"));
        QCOMPARE(request.json().object().value(QLatin1String("model")).toString(), model);
        QCOMPARE(request.header("Authorization"), key.isEmpty() ? QByteArray() : "Bearer " + key.toUtf8());
        QCOMPARE(m_environment->fake().requestCount(), 0); // no catalogue provider was asked

        // Removed from Settings after a confirmation, key and all.
        QTest::keyClick(window, Qt::Key_Comma, Qt::ControlModifier);
        QTRY_VERIFY(findItem(window, QStringLiteral("customProvider:Box.remove")));
        QVERIFY(click(findItem(window, QStringLiteral("customProvider:Box.remove"))));
        QTRY_VERIFY(findObject(window, QStringLiteral("removeProviderDialog"))->property("opened").toBool());
        saveScreenshots(window, QStringLiteral("settings-remove-provider") + theme);
        QVERIFY(click(findItem(window, QStringLiteral("confirmRemoveProviderButton"))));
        QTRY_VERIFY(!findItem(window, QStringLiteral("customProvider:Box")));
        QVERIFY(apiManagerOf(*app)->customProviders().list().isEmpty());
        if (!key.isEmpty()) {
            QTRY_VERIFY(!SecretStore().get(QStringLiteral("customProviderKey:Box")).has_value());
        }
    }

    // A server found on a probed port is offered on the dashboard and added only by the click.
    void dashboardOffersTheServerRunningHere()
    {
        FakeProvider server;
        serveLikeLocalModelServer(server, LocalModelServer::llamaCpp);
        ScopedEnvironment ports;
        ports.set("ZENTRIK_LOCAL_SERVERS", QStringLiteral("llama.cpp=%1").arg(server.port()));
        const auto app = startApp();
        QVERIFY(app);
        QQuickWindow *window = app->window();
        QTRY_VERIFY_WITH_TIMEOUT(findItem(window, QStringLiteral("localServerOffer:llama.cpp")), 5000);
        QVERIFY(joinedTexts(window).contains(QStringLiteral("A model server is running on this computer: use it")));
        APIManager *manager = apiManagerOf(*app);
        QVERIFY(manager->customProviders().list().isEmpty());
        const QString selected = manager->selectedTextModel();
        saveScreenshots(window, QStringLiteral("dashboard-local-server-light"));
        QVERIFY(click(findItem(window, QStringLiteral("darkModeSwitch"))));
        saveScreenshots(window, QStringLiteral("dashboard-local-server-dark"));

        QVERIFY(click(findItem(window, QStringLiteral("useLocalServer:llama.cpp"))));
        QTRY_VERIFY(
            joinedTexts(window).contains(QStringLiteral("llama.cpp was added. Its models are in the model list.")));
        QTRY_VERIFY(!findItem(window, QStringLiteral("localServerOffer:llama.cpp")));
        QCOMPARE(manager->customProviders().list().size(), 1);
        QCOMPARE(
            manager->customProviders().list().constFirst().models(), localServerModels(LocalModelServer::llamaCpp));
        QCOMPARE(manager->selectedTextModel(), selected);

        // Settings show it among the providers.
        QVERIFY(click(findItem(window, QStringLiteral("localServerSettingsButton"))));
        QTRY_VERIFY(findItem(window, QStringLiteral("customProvider:llama.cpp")));
    }

    // The manual proxy typed in Settings is what the next request uses once saved.
    void manualProxyIsSavedFromSettings()
    {
        const auto app = startApp();
        QVERIFY(app);
        QQuickWindow *window = app->window();
        QTest::keyClick(window, Qt::Key_Comma, Qt::ControlModifier);
        QTRY_VERIFY(findItem(window, QStringLiteral("proxyModePicker")));
        QVERIFY(!findItem(window, QStringLiteral("proxyHostField"))->isVisible());
        // Opened by a click, chosen with the keys.
        QQuickItem *modePicker = findItem(window, QStringLiteral("proxyModePicker"));
        auto *modeList = modePicker->property("popup").value<QObject *>();
        QVERIFY(click(modePicker));
        QTRY_VERIFY(modeList->property("opened").toBool());
        QTest::keyClick(window, Qt::Key_Down);
        QTest::keyClick(window, Qt::Key_Down);
        QTest::keyClick(window, Qt::Key_Return);
        QTRY_VERIFY(!modeList->property("visible").toBool());
        QTRY_VERIFY(findItem(window, QStringLiteral("proxyHostField"))->isVisible());
        QVERIFY(click(findItem(window, QStringLiteral("proxyHostField"))));
        typeText(window, QStringLiteral("proxy.example"));
        QTest::keyClick(window, Qt::Key_Tab);
        typeText(window, QStringLiteral("3128"));
        QQuickItem *problem = findItem(window, QStringLiteral("networkProblem"));
        QTRY_VERIFY2(problem->property("text").toString().isEmpty(), qPrintable(problem->property("text").toString()));
        scrollIntoView(findItem(window, QStringLiteral("networkSection")));
        saveScreenshots(window, QStringLiteral("settings-network-light"));
        QVERIFY(click(findItem(window, QStringLiteral("darkModeSwitch"))));
        scrollIntoView(findItem(window, QStringLiteral("networkSection")));
        saveScreenshots(window, QStringLiteral("settings-network-dark"));
        QVERIFY(click(findItem(window, QStringLiteral("chooseCaFileButton"))));
        QTRY_VERIFY(openFileDialog(window));
        saveScreenshots(window, QStringLiteral("settings-ca-file-dialog"));
        QTest::keyClick(window, Qt::Key_Escape);
        QTRY_VERIFY(!openFileDialog(window));
        QVERIFY(click(findItem(window, QStringLiteral("saveButton"))));
        QTRY_VERIFY(joinedTexts(window).contains(QStringLiteral("Your changes have been saved successfully.")));
        const ProxySettings proxy = apiManagerOf(*app)->networkSettings().proxy;
        QCOMPARE(proxy.mode, ProxySettings::Mode::manual);
        QCOMPARE(proxy.host, QStringLiteral("proxy.example"));
        QCOMPARE(proxy.port, quint16(3128));
    }
};
ZENTRIK_TEST(ProviderScreensTest)

#include "tst_providerscreens.moc"
