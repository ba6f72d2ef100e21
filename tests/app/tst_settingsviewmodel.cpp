#include "app/settingsviewmodel.h"
#include "model/apimanager.h"
#include "model/providerrouting.h"
#include "support/childtest.h"
#include "support/environment.h"
#include "support/hungsecretservice.h"
#include "support/localmodelserver.h"
#include "support/testregistry.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QtTest>

using namespace zentrik;

namespace {

// Waits for the keys that the manager and the screen read in the background.
bool keysRead(const APIManager &manager)
{
    return QTest::qWaitFor([&manager] { return !manager.readingKeys(); }, 5000);
}
bool keysRead(const SettingsViewModel &settings)
{
    return QTest::qWaitFor([&settings] { return !settings.isLoadingKeys(); }, 5000);
}
bool saveAndWait(SettingsViewModel &settings)
{
    QSignalSpy finished(&settings, &SettingsViewModel::saveFinished);
    settings.save();
    if (finished.isEmpty() && !finished.wait(5000)) {
        return false;
    }
    return finished.first().first().toBool();
}
} // namespace

// APIManager construction and the settings round trip, against the real keyring that
// scripts/test starts and a preferences file in a temporary directory.
class SettingsViewModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_config = std::make_unique<test::ScopedConfigDir>();
        SecretStore().clear();
    }

    void cleanup()
    {
        SecretStore().clear();
        m_config.reset();
    }

    void freshManagerUsesDefaults()
    {
        APIManager manager;
        QVERIFY(keysRead(manager));
        QCOMPARE(manager.selectedTextModel(), QStringLiteral("gpt-4o-mini"));
        QCOMPARE(manager.selectedImageModel(), QStringLiteral("fal-ai/flux-pro"));
        QVERIFY(manager.openAIKey().isEmpty());
        QVERIFY(manager.claudeKey().isEmpty());
        QVERIFY(manager.falAIKey().isEmpty());
        QCOMPARE(manager.preflightMessage().value_or(QString()),
            QStringLiteral("OpenAI API key is missing. Please add it in Settings."));
    }

    void settingsRoundTrip()
    {
        APIManager manager;
        QSignalSpy textChanged(&manager, &APIManager::selectedTextModelChanged);
        {
            SettingsViewModel settings(&manager);
            QVERIFY(keysRead(settings));
            QCOMPARE(settings.selectedTextModel(), QStringLiteral("gpt-4o-mini"));
            settings.setOpenAIKey(QStringLiteral("sk-openai"));
            settings.setClaudeKey(QStringLiteral("sk-claude"));
            settings.setFalAIKey(QStringLiteral("fal-key"));
            settings.setSelectedTextModel(QStringLiteral("claude-3-haiku-20240307"));
            settings.setSelectedImageModel(QStringLiteral("DALL-E"));
            // Nothing is written before Save.
            QCOMPARE(manager.selectedTextModel(), QStringLiteral("gpt-4o-mini"));
            SettingsViewModel other;
            QVERIFY(keysRead(other));
            QVERIFY(other.openAIKey().isEmpty());
            QSignalSpy notice(&settings, &SettingsViewModel::showingSaveConfirmationChanged);
            QVERIFY(saveAndWait(settings));
            QCOMPARE(notice.count(), 1);
            QVERIFY(settings.saveError().isEmpty());
            QVERIFY(settings.showingSaveConfirmation());
            settings.dismissSaveConfirmation();
            QVERIFY(!settings.showingSaveConfirmation());
        }
        // The shared manager uses the new choice for the very next request.
        QVERIFY(keysRead(manager));
        QCOMPARE(textChanged.count(), 1);
        QCOMPARE(manager.selectedTextModel(), QStringLiteral("claude-3-haiku-20240307"));
        QCOMPARE(manager.claudeKey(), QStringLiteral("sk-claude"));
        QVERIFY(!manager.preflightMessage().has_value());
        QCOMPARE(routeTextModel(manager.selectedTextModel()), std::optional(TextProvider::anthropic));

        // Reopening the screen shows what was saved, and so does a new manager (a restart).
        SettingsViewModel reopened;
        QVERIFY(keysRead(reopened));
        QCOMPARE(reopened.openAIKey(), QStringLiteral("sk-openai"));
        QCOMPARE(reopened.claudeKey(), QStringLiteral("sk-claude"));
        QCOMPARE(reopened.falAIKey(), QStringLiteral("fal-key"));
        QCOMPARE(reopened.selectedImageModel(), QStringLiteral("DALL-E"));
        APIManager restarted;
        QVERIFY(keysRead(restarted));
        QCOMPARE(restarted.selectedTextModel(), QStringLiteral("claude-3-haiku-20240307"));
        QCOMPARE(restarted.selectedImageModel(), QStringLiteral("DALL-E"));
        QCOMPARE(restarted.falAIKey(), QStringLiteral("fal-key"));
    }

    void emptyKeyFieldDeletesStoredKey()
    {
        SecretStore store;
        QVERIFY(store.set(QStringLiteral("old"), QStringLiteral("openAIKey")));
        APIManager manager;
        QVERIFY(keysRead(manager));
        QCOMPARE(manager.openAIKey(), QStringLiteral("old"));
        SettingsViewModel settings(&manager);
        QVERIFY(keysRead(settings));
        settings.setOpenAIKey(QString());
        QVERIFY(saveAndWait(settings));
        QVERIFY(keysRead(manager));
        QVERIFY(!store.get(QStringLiteral("openAIKey")).has_value());
        QVERIFY(manager.openAIKey().isEmpty());
        QVERIFY(!store.allKeys().contains(QStringLiteral("claudeKey")));
    }

    void storedSelectionOutsideCatalogueIsKept()
    {
        {
            Preferences preferences;
            preferences.setString(QStringLiteral("selectedTextModel"), QStringLiteral("retired-model"));
            preferences.setString(QStringLiteral("selectedImageModel"), QStringLiteral("fal-ai/retired"));
        }
        APIManager manager;
        QCOMPARE(manager.selectedTextModel(), QStringLiteral("retired-model"));
        QCOMPARE(manager.selectedImageModel(), QStringLiteral("fal-ai/retired"));
        QVERIFY(!routeTextModel(manager.selectedTextModel()).has_value());
        QCOMPARE(manager.preflightMessage().value_or(QString()),
            QStringLiteral("Invalid model selected. Please choose a valid model in Settings."));
        SettingsViewModel settings(&manager);
        QCOMPARE(settings.selectedTextModel(), QStringLiteral("retired-model"));
    }

    // The proxy and CA file are saved with the rest, the password in the Secret Service, and
    // the manager's requests follow them; a form that cannot be used saves nothing.
    void networkSettingsRoundTrip()
    {
        APIManager manager;
        SettingsViewModel settings(&manager);
        QVERIFY(keysRead(settings));
        NetworkSettingsForm &network = *settings.network();
        QCOMPARE(network.proxyMode(), QStringLiteral("system"));
        network.setProxyMode(QStringLiteral("manual"));
        network.setProxyHost(QStringLiteral("proxy.example"));
        QCOMPARE(network.problem(), QStringLiteral("The proxy needs a port (1 to 65535)."));
        QVERIFY(!saveAndWait(settings));
        QCOMPARE(settings.saveError(), QStringLiteral("The proxy needs a port (1 to 65535). Nothing was saved."));
        QCOMPARE(manager.networkSettings().proxy.mode, ProxySettings::Mode::system);

        network.setProxyPort(3128);
        network.setProxyUser(QStringLiteral("ann"));
        network.setProxyPassword(QStringLiteral("pw-proxy-9"));
        QVERIFY(saveAndWait(settings));
        QVERIFY(keysRead(manager));
        QCOMPARE(manager.networkSettings().proxy.toString(), QStringLiteral("http://ann@proxy.example:3128"));
        QCOMPARE(manager.httpClient().networkSettings().proxy.password, QStringLiteral("pw-proxy-9"));

        // Another mode keeps the manual proxy for later.
        network.setProxyMode(QStringLiteral("none"));
        QVERIFY(saveAndWait(settings));
        SettingsViewModel reopened;
        QVERIFY(keysRead(reopened));
        QCOMPARE(reopened.network()->proxyMode(), QStringLiteral("none"));
        QCOMPARE(reopened.network()->proxyHost(), QStringLiteral("proxy.example"));
        QCOMPARE(reopened.network()->proxyUser(), QStringLiteral("ann"));
        QCOMPARE(reopened.network()->proxyPassword(), QStringLiteral("pw-proxy-9"));
    }

    // A provider added in Settings joins the model picker under its name and the choice of
    // who transcribes; removing it takes both away.
    void customProvidersJoinThePickers()
    {
        test::FakeProvider server;
        test::serveLikeLocalModelServer(server, test::LocalModelServer::ollama);
        APIManager manager;
        SettingsViewModel settings(&manager);
        QVERIFY(keysRead(settings));
        ProviderSettings &providers = *settings.providers();
        QSignalSpy finished(&providers, &ProviderSettings::finished);
        QSignalSpy pickerChanged(&settings, &SettingsViewModel::textModelsChanged);
        providers.addProvider(QStringLiteral(" Ollama "), server.baseUrl().toString() + "/v1", QString());
        QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, 5000);
        QCOMPARE(providers.message(), QStringLiteral("Added Ollama with 2 model(s)."));
        QVERIFY(!pickerChanged.isEmpty());
        const QVariantList models = settings.textModels();
        QCOMPARE(models.size(), 14);
        QCOMPARE(models.at(12).toMap().value("id").toString(), QStringLiteral("custom:Ollama/llama3.2:latest"));
        QCOMPARE(models.at(12).toMap().value("group").toString(), QStringLiteral("Ollama"));
        QCOMPARE(settings.transcriptionProviders().last().toMap().value("id").toString(), QStringLiteral("Ollama"));

        settings.setTranscriptionProvider(QStringLiteral("Ollama"));
        settings.setSelectedTextModel(QStringLiteral("custom:Ollama/qwen2.5:0.5b"));
        QVERIFY(saveAndWait(settings));
        QCOMPARE(manager.transcriptionProvider(), QStringLiteral("Ollama"));
        QVERIFY(!manager.preflightMessage());

        providers.removeProvider(QStringLiteral("Ollama"));
        QCOMPARE(providers.message(), QStringLiteral("Removed Ollama."));
        QCOMPARE(settings.textModels().size(), 12);
        QCOMPARE(manager.preflightMessage().value_or(QString()),
            QStringLiteral("Invalid model selected. Please choose a valid model in Settings."));
    }

    // A key that cannot be a key is refused where it is typed, with the field named, and
    // nothing is written: neither the keys nor the model choices.
    void saveRefusesKeysThatCannotBeKeys_data()
    {
        QTest::addColumn<QString>("openAI");
        QTest::addColumn<QString>("claude");
        QTest::addColumn<QString>("expected");
        QTest::newRow("header injection") << QStringLiteral("sk-abc\r\nX-Evil: 1") << QString()
                                          << QStringLiteral("OpenAI API key contains a control character");
        QTest::newRow("tab") << QString() << QStringLiteral("sk-ant\tx")
                             << QStringLiteral("Claude API key contains a control character");
    }

    void saveRefusesKeysThatCannotBeKeys()
    {
        QFETCH(QString, openAI);
        QFETCH(QString, claude);
        QFETCH(QString, expected);
        SecretStore store;
        QVERIFY(store.set(QStringLiteral("sk-kept"), QStringLiteral("openAIKey")));
        APIManager manager;
        SettingsViewModel settings(&manager);
        QVERIFY(keysRead(settings));
        settings.setOpenAIKey(openAI);
        settings.setClaudeKey(claude);
        settings.setSelectedTextModel(QStringLiteral("gpt-4o"));
        QVERIFY(!saveAndWait(settings));
        QVERIFY2(settings.saveError().contains(expected), qPrintable(settings.saveError()));
        QVERIFY(settings.showingSaveConfirmation());
        QCOMPARE(store.get(QStringLiteral("openAIKey")), std::optional<QString>(QStringLiteral("sk-kept")));
        QVERIFY(!store.get(QStringLiteral("claudeKey")).has_value());
        QCOMPARE(Preferences().string(QStringLiteral("selectedTextModel"), QStringLiteral("unset")),
            QStringLiteral("unset"));
    }

    // Pasted keys keep their surrounding blanks out of the store.
    void saveTrimsPastedKeys()
    {
        APIManager manager;
        SettingsViewModel settings(&manager);
        QVERIFY(keysRead(settings));
        settings.setFalAIKey(QStringLiteral("  fal-123:abc\n"));
        QVERIFY(saveAndWait(settings));
        QCOMPARE(SecretStore().get(QStringLiteral("falAIKey")), std::optional<QString>(QStringLiteral("fal-123:abc")));
    }

    // The Secret Service fails in two ways: absent, or present and silent. Each child case
    // checks what the screen and the manager say, and that nobody waits for it.
    void saysWhatTheSecretServiceDid_data()
    {
        QTest::addColumn<bool>("hung");
        QTest::newRow("no service") << false;
        QTest::newRow("service that never answers") << true;
    }

    void saysWhatTheSecretServiceDid()
    {
        QFETCH(bool, hung);
        std::unique_ptr<test::HungSecretService> service;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        if (hung) {
            service = std::make_unique<test::HungSecretService>();
            QVERIFY2(service->isReady(), qPrintable(service->error()));
            env = service->environment();
            env.insert(QStringLiteral("ZENTRIK_EXPECT_HUNG"), QStringLiteral("1"));
        } else {
            env.insert(
                QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/nonexistent/zentrik-bus"));
        }
        env.insert(QStringLiteral("ZENTRIK_CONFIG_DIR"), m_config->path());
        const test::ChildRun run = test::runTestClassInChild(QStringLiteral("SettingsWithoutKeyringTest"), env);
        QVERIFY2(run.finished && run.exitCode == 0, run.output.constData());
        QVERIFY2(
            run.output.contains("PASS   : SettingsWithoutKeyringTest::saveShowsTheFailure()"), run.output.constData());
    }

private:
    std::unique_ptr<test::ScopedConfigDir> m_config;
};
ZENTRIK_TEST(SettingsViewModelTest)

// The child half of saysWhatTheSecretServiceDid.
class SettingsWithoutKeyringTest : public QObject
{
    Q_OBJECT

    [[nodiscard]] static bool hung() { return qEnvironmentVariableIsSet("ZENTRIK_EXPECT_HUNG"); }

private Q_SLOTS:
    void openingNeverWaits()
    {
        QElapsedTimer timer;
        timer.start();
        APIManager manager;
        SettingsViewModel settings(&manager);
        // Waiting for the service at all would take its whole 2 s deadline.
        QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
        QVERIFY(settings.isLoadingKeys());
        QVERIFY(keysRead(settings));
        if (hung()) {
            // A service is running; it is slow, and the screen says that, not that it is absent.
            QVERIFY(settings.secretStoreAvailable());
            QVERIFY2(settings.keyStoreProblem().contains(QStringLiteral("Secret Service did not answer")),
                qPrintable(settings.keyStoreProblem()));
            QCOMPARE(manager.keyStoreResult(), int(secretTimedOut));
        } else {
            QVERIFY(!settings.secretStoreAvailable());
            QVERIFY(settings.keyStoreProblem().isEmpty());
        }
    }

    void saveShowsTheFailure()
    {
        APIManager manager;
        SettingsViewModel settings(&manager);
        QVERIFY(keysRead(settings));
        settings.setOpenAIKey(QStringLiteral("sk-new"));
        settings.setSelectedImageModel(QStringLiteral("DALL-E"));
        QSignalSpy finished(&settings, &SettingsViewModel::saveFinished);
        QElapsedTimer timer;
        timer.start();
        settings.save();
        QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
        QVERIFY(settings.isSaving());
        QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, 5000);
        QCOMPARE(finished.first().first().toBool(), false);
        QVERIFY(!settings.isSaving());
        QVERIFY2(timer.elapsed() < SecretStore::timeoutMs + 700, qPrintable(QString::number(timer.elapsed())));
        QVERIFY(settings.showingSaveConfirmation());
        QCOMPARE(settings.saveError(), KeyService::describe(hung() ? secretTimedOut : secretNoService));
        // The model choice is a file and was kept.
        QCOMPARE(Preferences().string(QStringLiteral("selectedImageModel")), QStringLiteral("DALL-E"));
    }
};
ZENTRIK_CHILD_TEST(SettingsWithoutKeyringTest)

#include "tst_settingsviewmodel.moc"
